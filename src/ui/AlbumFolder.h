#pragma once

#include <QString>

/// How the album fields of the user become tags and a folder.

/// "Unknown" for an empty field; a field of "A - B" keeps what stands before
/// the first " - ", unless the field begins with it.
QString cleanedArtist(const QString& field);
/// "Unknown" for an empty field; without its parenthesised parts.
QString cleanedAlbum(const QString& field);
/// "Artist - Album", without the characters that no folder name may have, cut at
/// a whole character to what the file system takes.
QString albumFolderName(const QString& artist, const QString& album);
/// Whether a title is one that the track table made up ("Track 7").
bool looksGenerated(const QString& title);
