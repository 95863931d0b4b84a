#include "codecs/CFile.h"

CFile openForReading(const std::filesystem::path& path)
{
    return CFile(std::fopen(path.c_str(), "rb"));
}

CFile openForWriting(const std::filesystem::path& path)
{
    return CFile(std::fopen(path.c_str(), "wb"));
}
