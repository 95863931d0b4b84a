#include "support/WindowsFileWrites.h"

#include <psapi.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

namespace {

std::atomic<const WindowsFileWrites::Room*> currentRoom = nullptr;
decltype(&WriteFile) systemWrite = nullptr;

BOOL WINAPI writeWithin(HANDLE file, LPCVOID bytes, DWORD count, LPDWORD written, LPOVERLAPPED overlapped)
{
    const auto* room = currentRoom.load();
    if (!room || GetFileType(file) != FILE_TYPE_DISK)
        return systemWrite(file, bytes, count, written, overlapped);
    const DWORD allowed = (*room)(file, count);
    if (allowed > 0 || count == 0)
        return systemWrite(file, bytes, allowed, written, overlapped);
    if (written)
        *written = 0;
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

using Function = void*;

// A table's entries lie where its module put them, at any place.
Function functionAt(const std::uint8_t* entry)
{
    Function function = nullptr;
    std::memcpy(&function, entry, sizeof function);
    return function;
}

void replaceAt(std::uint8_t* entry, Function function)
{
    DWORD protection = 0;
    VirtualProtect(entry, sizeof function, PAGE_READWRITE, &protection);
    std::memcpy(entry, &function, sizeof function);
    VirtualProtect(entry, sizeof function, protection, &protection);
}

// Every loaded module, this program among them, names the functions that it calls
// in a table of its own.
void replaceInModule(HMODULE module, Function from, Function to)
{
    auto* const base = reinterpret_cast<std::uint8_t*>(module);
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dos->e_lfanew);
    const auto& table = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (table.Size == 0)
        return;
    const auto* import = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + table.VirtualAddress);
    for (; import->Name != 0; ++import) {
        for (auto* entry = base + import->FirstThunk; functionAt(entry); entry += sizeof(Function)) {
            if (functionAt(entry) == from)
                replaceAt(entry, to);
        }
    }
}

void replaceEverywhere(Function from, Function to)
{
    std::vector<HMODULE> modules(1024);
    DWORD bytes = 0;
    if (!EnumProcessModules(GetCurrentProcess(), modules.data(),
                            static_cast<DWORD>(modules.size() * sizeof(HMODULE)), &bytes))
        return;
    modules.resize(std::min(modules.size(), bytes / sizeof(HMODULE)));
    for (HMODULE module : modules)
        replaceInModule(module, from, to);
}

} // namespace

WindowsFileWrites::WindowsFileWrites(Room room) : roomFor(std::move(room))
{
    static const bool replaced = [] {
        systemWrite = reinterpret_cast<decltype(&WriteFile)>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "WriteFile")));
        replaceEverywhere(reinterpret_cast<Function>(systemWrite), reinterpret_cast<Function>(&writeWithin));
        return true;
    }();
    (void)replaced;
    currentRoom = &roomFor;
}

WindowsFileWrites::~WindowsFileWrites()
{
    currentRoom = nullptr;
}
