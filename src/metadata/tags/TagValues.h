#pragma once

#include <QString>

class QPixmap;

namespace TagLib {
class ByteVector;
class String;
class Tag;
} // namespace TagLib

struct TagData;

/// The values of a TagData in the forms that TagLib takes.

TagLib::String tagText(const QString& text);

/// The first four characters of the release date.
QString yearText(const TagData& tags);

/// Title, artist, album and year: what every kind of tag has a setter for. The year
/// as a number, 0 where it is none.
void setCommonValues(TagLib::Tag& target, const TagData& tags);

/// The cover as a JPEG of quality 90, in its own size. Empty when it has more
/// points in a row or column than the format has room for.
TagLib::ByteVector coverToJpeg(const QPixmap& cover);

inline constexpr char coverMimeType[] = "image/jpeg";
inline constexpr char coverDescription[] = "Cover";
