#pragma once

#include "metadata/tags/TagData.h"

#include <QString>

/// Words of the last failure of writeTags on this thread; never cleared.
extern thread_local QString lastTagError;

/// Writes the tags by the file's suffix: mp3, wav and m4a; anything else is
/// taken for FLAC. False when the file could not be opened or saved; the words
/// then stand in lastTagError. Nothing throws.
/// @param coverLeftOut  if not null, set to whether a cover was given that the
///                      format cannot hold; all else is written then
bool writeTags(const QString& path, const TagData& tags, bool* coverLeftOut = nullptr);
