#pragma once

#include <windows.h>

#include <functional>

/// While it lives, somebody has a say in every write to a file of this process: of
/// the program, of its libraries and of the C library. One at a time.
class WindowsFileWrites {
public:
    /// How many of the bytes are let through to the file; a write of which none
    /// are fails as on a full disk.
    using Room = std::function<DWORD(HANDLE file, DWORD wanted)>;

    explicit WindowsFileWrites(Room room);
    ~WindowsFileWrites();
    WindowsFileWrites(const WindowsFileWrites&) = delete;
    WindowsFileWrites& operator=(const WindowsFileWrites&) = delete;

private:
    const Room roomFor;
};
