// The calls of the C library that a program makes to reach a drive. Linked into
// a test program they take the place of the library's own, also for the other
// libraries of that program and in front of a sanitizer's.

#include "support/SgIoStandIn.h"

#include <cstdarg>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

bool carriesMode(int flags)
{
    return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
}

} // namespace

extern "C" {

int open(const char* path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const auto mode = carriesMode(flags) ? va_arg(rest, mode_t) : mode_t{0};
    va_end(rest);
    if (const auto file = SgIoStandIn::handleOpen(path, flags))
        return *file;
    return static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

int open64(const char* path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const auto mode = carriesMode(flags) ? va_arg(rest, mode_t) : mode_t{0};
    va_end(rest);
    return open(path, flags | O_LARGEFILE, mode);
}

int close(int file)
{
    SgIoStandIn::handleClose(file);
    return static_cast<int>(syscall(SYS_close, file));
}

int ioctl(int file, unsigned long code, ...) noexcept
{
    va_list rest;
    va_start(rest, code);
    void* const argument = va_arg(rest, void*);
    va_end(rest);
    if (const auto result = SgIoStandIn::handleRequest(file, code, argument))
        return *result;
    return static_cast<int>(syscall(SYS_ioctl, file, code, argument));
}

} // extern "C"
