#include "disc/WindowsDrivePlatform.h"

#include "disc/WindowsDriveDevice.h"

#include <windows.h>

namespace {

WindowsHandle openDevice(const QString& letter, DWORD access)
{
    const std::wstring name = (QStringLiteral("\\\\.\\") + letter).toStdWString();
    return WindowsHandle(CreateFileW(name.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                     OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
}

qint64 counterFrequency()
{
    LARGE_INTEGER frequency{};
    QueryPerformanceFrequency(&frequency);
    return frequency.QuadPart;
}

} // namespace

QStringList WindowsDrivePlatform::enumerateDrives()
{
    QStringList drives;
    const DWORD present = GetLogicalDrives();
    for (char16_t letter = u'A'; letter <= u'Z'; ++letter) {
        if ((present >> (letter - u'A') & 1) == 0)
            continue;
        const QString drive = QStringLiteral("%1:").arg(QChar(letter));
        const std::wstring root = (drive + u'\\').toStdWString();
        if (GetDriveTypeW(root.c_str()) == DRIVE_CDROM)
            drives.append(drive);
    }
    return drives;
}

std::unique_ptr<DriveDevice> WindowsDrivePlatform::open(const QString& letter)
{
    WindowsHandle handle = openDevice(letter, GENERIC_READ | GENERIC_WRITE);
    if (!handle.isOpen())
        handle = openDevice(letter, GENERIC_READ);
    return handle.isOpen() ? std::make_unique<WindowsDriveDevice>(std::move(handle)) : nullptr;
}

qint64 WindowsDrivePlatform::nowNanoseconds()
{
    static const qint64 frequency = counterFrequency();
    constexpr qint64 second = 1'000'000'000;
    LARGE_INTEGER count{};
    QueryPerformanceCounter(&count);
    // In two parts: the product of the whole count would not fit.
    return count.QuadPart / frequency * second + count.QuadPart % frequency * second / frequency;
}

void WindowsDrivePlatform::sleepMilliseconds(int duration)
{
    Sleep(static_cast<DWORD>(duration));
}

std::unique_ptr<DrivePlatform> makeDrivePlatform()
{
    return std::make_unique<WindowsDrivePlatform>();
}
