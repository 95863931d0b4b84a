#include "codecs/CFile.h"

#include <windows.h>

#include <fcntl.h>
#include <io.h>

namespace {

struct Opening {
    DWORD access;
    DWORD creation;
    int descriptorFlags;
    const char* mode;
};

// The C library's own way would keep others from renaming and deleting the file
// while it is open: an unfinished one must go when the program ends under it.
CFile open(const std::filesystem::path& path, const Opening& opening)
{
    void* const handle =
        CreateFileW(path.c_str(), opening.access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, opening.creation, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return nullptr;
    const int descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(handle), opening.descriptorFlags);
    if (descriptor < 0) {
        CloseHandle(handle);
        return nullptr;
    }
    CFile stream(_fdopen(descriptor, opening.mode));
    if (!stream)
        _close(descriptor);
    return stream;
}

} // namespace

CFile openForReading(const std::filesystem::path& path)
{
    return open(path, {GENERIC_READ, OPEN_EXISTING, _O_BINARY | _O_RDONLY, "rb"});
}

CFile openForWriting(const std::filesystem::path& path)
{
    return open(path, {GENERIC_READ | GENERIC_WRITE, CREATE_ALWAYS, _O_BINARY | _O_RDWR, "wb"});
}
