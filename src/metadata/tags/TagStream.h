#pragma once

#include <taglib/taglib.h>
#include <taglib/tfilestream.h>

#include <cstddef>

/// A file for TagLib to work on that makes room for a tag in large pieces, from
/// the end of the file backward. TagLib's own stream moves a whole track a few
/// kilobytes at a time; and on a full disk it has overwritten audio by then.
class TagStream : public TagLib::FileStream {
public:
#if TAGLIB_MAJOR_VERSION >= 2
    using Offset = TagLib::offset_t;
    using Size = std::size_t;
#else
    using Offset = unsigned long;
    using Size = unsigned long;
#endif

    using FileStream::FileStream;

    /// Throws std::runtime_error with the file as it was when there is no room.
    void insert(const TagLib::ByteVector& data, Offset start = 0, Size replace = 0) override;

private:
    /// Takes all the room that is needed, or finds out that it is not there,
    /// before a byte of the file changes.
    void growTo(std::size_t newLength);
};
