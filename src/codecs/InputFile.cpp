#include "codecs/InputFile.h"

#include <cstdio>
#include <cstring>
#include <limits>

bool InputFile::open(const std::filesystem::path& path)
{
    if (file)
        return false;
    file = openForReading(path);
    offsetNow = 0;
    failed = false;
    return isOpen();
}

void InputFile::close()
{
    file.reset();
}

bool InputFile::read(void* target, std::size_t count)
{
    if (!good())
        return false;
    const std::size_t taken = std::fread(target, 1, count, file.get());
    offsetNow += taken;
    if (taken != count)
        failed = true;
    return good();
}

bool InputFile::skip(quint64 count)
{
    constexpr auto furthest = static_cast<quint64>(std::numeric_limits<off_t>::max());
    if (!good())
        return false;
    if (count > furthest - offsetNow) {
        failed = true;
        return false;
    }
    return count == 0 || seek(offsetNow + count);
}

bool InputFile::seek(quint64 offset)
{
    if (!good())
        return false;
    if (fseeko(file.get(), static_cast<off_t>(offset), SEEK_SET) != 0)
        failed = true;
    else
        offsetNow = offset;
    return good();
}

bool InputFile::readMagic(const char* text)
{
    char bytes[4];
    return read(bytes, sizeof bytes) && std::memcmp(bytes, text, sizeof bytes) == 0;
}
