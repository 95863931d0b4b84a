#include "codecs/OutputFile.h"

bool OutputFile::open(const std::filesystem::path& path, std::size_t bufferBytes)
{
    if (file)
        return false;
    buffer.resize(bufferBytes);
    file = openForWriting(path);
    if (file && bufferBytes > 0)
        std::setvbuf(file.get(), buffer.data(), _IOFBF, buffer.size());
    offsetNow = 0;
    failed = false;
    return isOpen();
}

bool OutputFile::write(const void* bytes, std::size_t count)
{
    if (!good())
        return false;
    if (count > 0 && std::fwrite(bytes, 1, count, file.get()) != count)
        failed = true;
    offsetNow += count;
    return good();
}

bool OutputFile::seek(quint64 offset)
{
    if (!good())
        return false;
    // Not every C library's seek tells that what was buffered found no room.
    // Whole-file offsets pass through a 64-bit off_t on every system served.
    if (std::fflush(file.get()) != 0 || fseeko(file.get(), static_cast<off_t>(offset), SEEK_SET) != 0)
        failed = true;
    offsetNow = offset;
    return good();
}

bool OutputFile::finish()
{
    if (!file)
        return false;
    // A full disk often shows only here, when the buffered bytes are let go.
    if (std::fflush(file.get()) != 0)
        failed = true;
    const bool complete = good();
    file.reset();
    return complete;
}

void OutputFile::abandon()
{
    file.reset();
}
