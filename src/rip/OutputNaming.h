#pragma once

#include <QString>

struct RipOrder;
struct TrackInfo;

/// Where the album's cover goes, below the output folder.
inline constexpr char coverFileName[] = "/cover.jpg";

/// What a track is called where it has no title.
QString trackName(const TrackInfo& track);

/// Takes out what no file name may hold on any common system: \ / : * ? " < > |
QString withoutForbiddenCharacters(QString text);

/// The text without forbidden characters, and without blanks and full stops at
/// its end.
QString cleanNamePart(const QString& text);

/// Output folder, slash and file name without extension, by the order's naming
/// rule.
QString outputBasePath(const RipOrder& order, int trackNumber, const QString& title);
