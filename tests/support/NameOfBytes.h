#pragma once

#include <filesystem>
#include <string_view>

/// A file's name of these bytes: on Linux as they are, whether they are text or not; on
/// Windows, where a name is UTF-16, of the characters with their numbers.
inline std::filesystem::path nameOfBytes(std::string_view bytes)
{
    std::filesystem::path::string_type name;
    for (const char byte : bytes)
        name.push_back(static_cast<std::filesystem::path::value_type>(static_cast<unsigned char>(byte)));
    return name;
}
