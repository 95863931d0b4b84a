#pragma once

#include "base/ByteOrder.h"
#include "codecs/CFile.h"

#include <QtGlobal>

#include <cstddef>

/// One file being read, with a state that turns bad at the first read that comes
/// up short. A bad file reads and skips nothing until it is cleared.
class InputFile {
public:
    /// False when the file can't be opened or one is attached already.
    bool open(const std::filesystem::path& path);
    void close();

    bool isOpen() const { return file != nullptr; }
    bool good() const { return file && !failed; }
    void clear() { failed = false; }

    /// Reads exactly so many bytes. Returns good(); a short read leaves the
    /// rest of the target as it was.
    bool read(void* target, std::size_t count);

    /// Moves on; a place behind the end is no failure, one that no file can have
    /// is. Returns good().
    bool skip(quint64 count);
    bool seek(quint64 offset);

    quint64 position() const { return offsetNow; }

    /// Whether four bytes follow that equal the text.
    bool readMagic(const char* text);

    /// An integer, 0 when the file is or turns bad.
    template<typename Integer>
    Integer readLittle()
    {
        unsigned char bytes[sizeof(Integer)];
        return read(bytes, sizeof bytes) ? byteorder::readLittle<Integer>(bytes) : Integer{0};
    }
    template<typename Integer>
    Integer readBig()
    {
        unsigned char bytes[sizeof(Integer)];
        return read(bytes, sizeof bytes) ? byteorder::readBig<Integer>(bytes) : Integer{0};
    }

private:
    CFile file;
    quint64 offsetNow = 0;
    bool failed = false;
};

/// The four letters that name a chunk, as they stand in the file.
constexpr quint32 chunkId(const char (&letters)[5])
{
    quint32 id = 0;
    for (int i = 0; i < 4; ++i)
        id = id << 8 | static_cast<quint8>(letters[i]);
    return id;
}
