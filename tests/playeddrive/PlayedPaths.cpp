// The calls of the C library by which a program asks what a path names.

#include "playeddrive/PlayedPath.h"

#include <climits>
#include <cstdlib>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

using playedpath::atPlace;
using playedpath::behind;
using playedpath::driveOf;

namespace {

constexpr unsigned blockMajor = 11;   // of the kernel's driver of optical drives
constexpr unsigned genericMajor = 21; // and of generic nodes
constexpr mode_t accessOfNode = 0660;

mode_t typeOfNode(const char* path)
{
    if (!driveOf(path))
        return 0;
    return std::strcmp(path, playedfiles::blockNode) == 0     ? S_IFBLK
           : std::strcmp(path, playedfiles::genericNode) == 0 ? S_IFCHR
                                                              : 0;
}

unsigned majorOf(mode_t type)
{
    return type == S_IFBLK ? blockMajor : genericMajor;
}

/// For a node of the drive, what the system says of one; else calls.
template<typename Stat, typename Call>
int describe(const char* path, Stat* found, const Call& call)
{
    const mode_t type = typeOfNode(path);
    if (type == 0)
        return atPlace(path, call);
    *found = {};
    found->st_mode = type | accessOfNode;
    found->st_nlink = 1;
    found->st_rdev = makedev(majorOf(type), 0);
    return 0;
}

template<typename Stat>
using StatCall = int(const char*, Stat*);
template<typename Stat>
using VersionedStatCall = int(int, const char*, Stat*);

template<typename Stat>
int describeWith(StatCall<Stat>* real, const char* path, Stat* found)
{
    return describe(path, found, [&](const char* place) { return real(place, found); });
}

template<typename Stat>
int describeWith(VersionedStatCall<Stat>* real, int version, const char* path, Stat* found)
{
    return describe(path, found, [&](const char* place) { return real(version, place, found); });
}

char* nameOfPlace(const char* path, char* found)
{
    const PlayedDrive* const drive = driveOf(path);
    if (!drive || !found)
        return found;
    const std::string name = playedfiles::nameOf(drive->folder(), found);
    return std::strcpy(found, name.c_str()); // no longer than what it replaces
}

} // namespace

#pragma GCC visibility push(default)

extern "C" {

int stat(const char* path, struct stat* found) noexcept
{
    static auto* const real = behind<StatCall<struct stat>>("stat");
    return describeWith(real, path, found);
}

int stat64(const char* path, struct stat64* found) noexcept
{
    static auto* const real = behind<StatCall<struct stat64>>("stat64");
    return describeWith(real, path, found);
}

int lstat(const char* path, struct stat* found) noexcept
{
    static auto* const real = behind<StatCall<struct stat>>("lstat");
    return describeWith(real, path, found);
}

int lstat64(const char* path, struct stat64* found) noexcept
{
    static auto* const real = behind<StatCall<struct stat64>>("lstat64");
    return describeWith(real, path, found);
}

// What programs call that were linked with a C library before 2.33.
int __xstat(int version, const char* path, struct stat* found) noexcept
{
    static auto* const real = behind<VersionedStatCall<struct stat>>("__xstat");
    return describeWith(real, version, path, found);
}

int __xstat64(int version, const char* path, struct stat64* found) noexcept
{
    static auto* const real = behind<VersionedStatCall<struct stat64>>("__xstat64");
    return describeWith(real, version, path, found);
}

int __lxstat(int version, const char* path, struct stat* found) noexcept
{
    static auto* const real = behind<VersionedStatCall<struct stat>>("__lxstat");
    return describeWith(real, version, path, found);
}

int __lxstat64(int version, const char* path, struct stat64* found) noexcept
{
    static auto* const real = behind<VersionedStatCall<struct stat64>>("__lxstat64");
    return describeWith(real, version, path, found);
}

int statx(int folder, const char* path, int flags, unsigned mask, struct statx* found) noexcept
{
    static auto* const real = behind<int(int, const char*, int, unsigned, struct statx*)>("statx");
    const mode_t type = typeOfNode(path);
    if (type == 0)
        return atPlace(path, [&](const char* place) { return real(folder, place, flags, mask, found); });
    *found = {};
    found->stx_mask = STATX_BASIC_STATS;
    found->stx_mode = static_cast<__u16>(type | accessOfNode);
    found->stx_nlink = 1;
    found->stx_rdev_major = majorOf(type);
    return 0;
}

int access(const char* path, int mode) noexcept
{
    static auto* const real = behind<int(const char*, int)>("access");
    if (typeOfNode(path) != 0)
        return 0;
    return atPlace(path, [&](const char* place) { return real(place, mode); });
}

DIR* opendir(const char* path)
{
    static auto* const real = behind<DIR*(const char*)>("opendir");
    return atPlace(path, real);
}

ssize_t readlink(const char* path, char* target, size_t room) noexcept
{
    static auto* const real = behind<ssize_t(const char*, char*, size_t)>("readlink");
    return atPlace(path, [&](const char* place) { return real(place, target, room); });
}

char* realpath(const char* path, char* found) noexcept
{
    static auto* const real = behind<char*(const char*, char*)>("realpath");
    if (typeOfNode(path) != 0)
        return found ? std::strcpy(found, path) : strdup(path);
    return nameOfPlace(path, atPlace(path, [&](const char* place) { return real(place, found); }));
}

char* __realpath_chk(const char* path, char* found, size_t) noexcept
{
    return realpath(path, found);
}

} // extern "C"

#pragma GCC visibility pop
