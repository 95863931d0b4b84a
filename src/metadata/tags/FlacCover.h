#pragma once

namespace TagLib {
class ByteVector;
namespace FLAC {
class File;
}
} // namespace TagLib

/// Adds a JPEG as a front cover to a FLAC file that is to be saved. False, with
/// the file as it was, where the picture is too large: the length of a FLAC
/// block has 24 bits, and a longer one would make a broken file.
bool addFrontCover(TagLib::FLAC::File& file, const TagLib::ByteVector& jpeg);
