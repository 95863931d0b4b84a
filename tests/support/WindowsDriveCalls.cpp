// Windows' calls that a program makes to reach a drive. The names are those of the
// pointers through which a program calls a library: defined here, they take the place
// of the system's for all that is linked into the test program.

#include "support/WindowsDriveStandIn.h"

namespace {

template<typename Function>
Function* realCall(const char* name)
{
    return reinterpret_cast<Function*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), name)));
}

HANDLE WINAPI createFile(LPCWSTR name, DWORD access, DWORD sharing, SECURITY_ATTRIBUTES* security,
                         DWORD disposition, DWORD attributes, HANDLE model)
{
    if (const auto handle = WindowsDriveStandIn::handleCreateFile(name, access, sharing, security,
                                                                  disposition, attributes, model))
        return *handle;
    static auto* const real = realCall<decltype(CreateFileW)>("CreateFileW");
    return real(name, access, sharing, security, disposition, attributes, model);
}

BOOL WINAPI deviceIoControl(HANDLE file, DWORD code, void* input, DWORD inputSize, void* output,
                            DWORD outputSize, DWORD* returned, OVERLAPPED* overlapped)
{
    if (const auto ok = WindowsDriveStandIn::handleRequest(file, code, input, inputSize, output, outputSize,
                                                           returned, overlapped))
        return *ok;
    static auto* const real = realCall<decltype(DeviceIoControl)>("DeviceIoControl");
    return real(file, code, input, inputSize, output, outputSize, returned, overlapped);
}

BOOL WINAPI closeHandle(HANDLE handle)
{
    WindowsDriveStandIn::handleClose(handle);
    static auto* const real = realCall<decltype(CloseHandle)>("CloseHandle");
    return real(handle);
}

DWORD WINAPI getLogicalDrives()
{
    static auto* const real = realCall<decltype(GetLogicalDrives)>("GetLogicalDrives");
    const auto drives = WindowsDriveStandIn::handleLogicalDrives();
    return drives ? *drives : real();
}

UINT WINAPI getDriveType(LPCWSTR root)
{
    static auto* const real = realCall<decltype(GetDriveTypeW)>("GetDriveTypeW");
    const auto type = WindowsDriveStandIn::handleDriveType(root);
    return type ? *type : real(root);
}

HANDLE WINAPI openThread(DWORD access, BOOL inherited, DWORD thread)
{
    if (WindowsDriveStandIn::refusesThread(access, inherited, thread))
        return nullptr;
    static auto* const real = realCall<decltype(OpenThread)>("OpenThread");
    const HANDLE opened = real(access, inherited, thread);
    WindowsDriveStandIn::handleThreadOpened(opened);
    return opened;
}

BOOL WINAPI cancelSynchronousIo(HANDLE thread)
{
    if (const auto done = WindowsDriveStandIn::handleCancel(thread))
        return *done;
    static auto* const real = realCall<decltype(CancelSynchronousIo)>("CancelSynchronousIo");
    return real(thread);
}

DWORD WINAPI getCurrentThreadId()
{
    static auto* const real = realCall<decltype(GetCurrentThreadId)>("GetCurrentThreadId");
    const DWORD thread = real();
    WindowsDriveStandIn::handleThreadAsked(thread);
    return thread;
}

} // namespace

extern "C" {

decltype(&CreateFileW) __imp_CreateFileW = createFile;
decltype(&DeviceIoControl) __imp_DeviceIoControl = deviceIoControl;
decltype(&CloseHandle) __imp_CloseHandle = closeHandle;
decltype(&GetLogicalDrives) __imp_GetLogicalDrives = getLogicalDrives;
decltype(&GetDriveTypeW) __imp_GetDriveTypeW = getDriveType;
decltype(&OpenThread) __imp_OpenThread = openThread;
decltype(&CancelSynchronousIo) __imp_CancelSynchronousIo = cancelSynchronousIo;
decltype(&GetCurrentThreadId) __imp_GetCurrentThreadId = getCurrentThreadId;

} // extern "C"
