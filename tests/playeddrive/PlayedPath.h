#pragma once

#include "playeddrive/PlayedDrive.h"
#include "playeddrive/PlayedFiles.h"

#include <dlfcn.h>

#include <cstring>
#include <optional>
#include <string>

/// What the calls that take a path have in common.
namespace playedpath {

/// The library's own function of a name, behind the one that takes its place.
template<typename Function>
Function* behind(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

/// The drive, where a path may be one of its own: most calls of a program are about
/// other files, and before the first of these nothing is set up.
inline PlayedDrive* driveOf(const char* path)
{
    const bool ours =
        path
        && (std::strncmp(path, "/dev/sr", 7) == 0 || std::strncmp(path, "/dev/sg", 7) == 0
            || std::strncmp(path, "/sys/", 5) == 0 || std::strncmp(path, "/proc/sys/", 10) == 0);
    return ours ? PlayedDrive::inUse() : nullptr;
}

/// Calls with the path, or with the place where the file really lies.
template<typename Call>
auto atPlace(const char* path, const Call& call)
{
    const PlayedDrive* const drive = driveOf(path);
    const auto place = drive ? playedfiles::placeOf(drive->folder(), path) : std::nullopt;
    return call(place ? place->c_str() : path);
}

} // namespace playedpath
