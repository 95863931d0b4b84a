#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>

/// A C stream with one owner, for reading or for writing. Libraries that read from
/// it are told not to close it.
struct CFileCloser {
    void operator()(std::FILE* handle) const { std::fclose(handle); }
};
using CFile = std::unique_ptr<std::FILE, CFileCloser>;

/// Null when the file can't be opened.
CFile openForReading(const std::filesystem::path& path);
/// Creates or truncates the file; null when it can't be created.
CFile openForWriting(const std::filesystem::path& path);
