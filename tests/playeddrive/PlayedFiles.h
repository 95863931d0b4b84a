#pragma once

#include <QByteArray>

#include <optional>
#include <string>

/// What a program sees of the drive in the file system: its block node /dev/sr0 and
/// its generic node /dev/sg0, which are nothing but names, and what the kernel tells
/// of it under /sys and /proc, which lies as a tree of files in a folder.
namespace playedfiles {

inline constexpr const char* blockNode = "/dev/sr0";
inline constexpr const char* genericNode = "/dev/sg0";

/// What the kernel tells of a drive.
struct Drive {
    QByteArray vendor;
    QByteArray model;
    bool usb = false;
    int transferLimit = 0; ///< bytes of a request
};

/// Writes the tree.
void make(const std::string& folder, const Drive& drive);

/// Where the file that a path names really lies; nothing for one that is not the drive's.
std::optional<std::string> placeOf(const std::string& folder, const char* path);
/// The path under which a program knows a place in the folder.
std::string nameOf(const std::string& folder, const std::string& place);

} // namespace playedfiles
