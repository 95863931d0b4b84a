#pragma once

#include <QString>

#include <filesystem>
#include <string>

/// A path of Qt's as the standard library and the codecs take it.
std::filesystem::path toPath(const QString& path);

/// The same back.
QString fromPath(const std::filesystem::path& path);

/// For libraries that take every path as UTF-8.
std::string utf8Path(const std::filesystem::path& path);
