// The calls of the C library by which a program opens and commands a drive, and the
// clock and the sleep by which it notices the time. Loaded in front of a program they
// take the place of the library's own, for the drive alone; all else goes on to the
// library.

#include "playeddrive/PlayedPath.h"

#include <cstdarg>
#include <cstdio>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <time.h>
#include <unistd.h>

using playedpath::atPlace;
using playedpath::behind;
using playedpath::driveOf;

namespace {

using Open = int(const char*, int, ...);
using OpenAt = int(int, const char*, int, ...);

constexpr qint64 second = 1'000'000'000;

mode_t modeOf(int flags, va_list& rest)
{
    const bool carried = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    return carried ? va_arg(rest, mode_t) : mode_t{0};
}

int openWith(Open* real, const char* path, int flags, mode_t mode)
{
    if (driveOf(path)) {
        if (const auto file = SgIoStandIn::handleOpen(path, flags))
            return *file;
    }
    return atPlace(path, [&](const char* place) { return real(place, flags, mode); });
}

int openAtWith(OpenAt* real, int folder, const char* path, int flags, mode_t mode)
{
    if (driveOf(path)) {
        if (const auto file = SgIoStandIn::handleOpen(path, flags))
            return *file;
    }
    return atPlace(path, [&](const char* place) { return real(folder, place, flags, mode); });
}

bool sleptWithTheDrive(qint64 nanoseconds)
{
    if (!PlayedDrive::hasCommanded())
        return false;
    PlayedDrive::inUse()->sleep(nanoseconds);
    return true;
}

qint64 nanosecondsOf(const timespec& time)
{
    return qint64{time.tv_sec} * second + time.tv_nsec;
}

} // namespace

#pragma GCC visibility push(default)

extern "C" {

int open(const char* path, int flags, ...)
{
    static Open* const real = behind<Open>("open");
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = modeOf(flags, rest);
    va_end(rest);
    return openWith(real, path, flags, mode);
}

int open64(const char* path, int flags, ...)
{
    static Open* const real = behind<Open>("open64");
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = modeOf(flags, rest);
    va_end(rest);
    return openWith(real, path, flags, mode);
}

int openat(int folder, const char* path, int flags, ...)
{
    static OpenAt* const real = behind<OpenAt>("openat");
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = modeOf(flags, rest);
    va_end(rest);
    return openAtWith(real, folder, path, flags, mode);
}

int openat64(int folder, const char* path, int flags, ...)
{
    static OpenAt* const real = behind<OpenAt>("openat64");
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = modeOf(flags, rest);
    va_end(rest);
    return openAtWith(real, folder, path, flags, mode);
}

// What a fortified program calls in place of the four above.
int __open_2(const char* path, int flags)
{
    return open(path, flags);
}

int __open64_2(const char* path, int flags)
{
    return open64(path, flags);
}

int __openat_2(int folder, const char* path, int flags)
{
    return openat(folder, path, flags);
}

int __openat64_2(int folder, const char* path, int flags)
{
    return openat64(folder, path, flags);
}

FILE* fopen(const char* path, const char* mode)
{
    static auto* const real = behind<FILE*(const char*, const char*)>("fopen");
    return atPlace(path, [&](const char* place) { return real(place, mode); });
}

FILE* fopen64(const char* path, const char* mode)
{
    static auto* const real = behind<FILE*(const char*, const char*)>("fopen64");
    return atPlace(path, [&](const char* place) { return real(place, mode); });
}

int close(int file)
{
    static auto* const real = behind<int(int)>("close");
    SgIoStandIn::handleClose(file);
    return real(file);
}

int dup(int file) noexcept
{
    static auto* const real = behind<int(int)>("dup");
    const int copy = real(file);
    SgIoStandIn::handleDuplicate(file, copy);
    return copy;
}

int ioctl(int file, unsigned long code, ...) noexcept
{
    static auto* const real = behind<int(int, unsigned long, ...)>("ioctl");
    va_list rest;
    va_start(rest, code);
    void* const argument = va_arg(rest, void*);
    va_end(rest);
    if (SgIoStandIn::isOpen(file))
        return PlayedDrive::inUse()->request(file, code, argument);
    return real(file, code, argument);
}

int clock_gettime(clockid_t clock, timespec* time) noexcept
{
    static auto* const real = behind<int(clockid_t, timespec*)>("clock_gettime");
    const int result = real(clock, time);
    if (result != 0 || clock != CLOCK_MONOTONIC || PlayedDrive::ownNanoseconds() == 0)
        return result;
    const qint64 now = nanosecondsOf(*time) + PlayedDrive::ownNanoseconds();
    *time = {now / second, now % second};
    return 0;
}

int nanosleep(const timespec* duration, timespec* left)
{
    static auto* const real = behind<int(const timespec*, timespec*)>("nanosleep");
    return sleptWithTheDrive(nanosecondsOf(*duration)) ? 0 : real(duration, left);
}

int clock_nanosleep(clockid_t clock, int flags, const timespec* time, timespec* left)
{
    static auto* const real = behind<int(clockid_t, int, const timespec*, timespec*)>("clock_nanosleep");
    if ((flags & TIMER_ABSTIME) == 0 && sleptWithTheDrive(nanosecondsOf(*time)))
        return 0;
    return real(clock, flags, time, left);
}

int usleep(useconds_t duration)
{
    static auto* const real = behind<int(useconds_t)>("usleep");
    return sleptWithTheDrive(qint64{duration} * 1000) ? 0 : real(duration);
}

unsigned sleep(unsigned duration)
{
    static auto* const real = behind<unsigned(unsigned)>("sleep");
    return sleptWithTheDrive(duration * second) ? 0 : real(duration);
}

} // extern "C"

#pragma GCC visibility pop
