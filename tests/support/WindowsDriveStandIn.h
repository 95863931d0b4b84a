#pragma once

#include "disc/DriveDevice.h"
#include "support/WindowsFault.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

#include <windows.h>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>

/// Stands in for Windows' calls around one optical drive: the list of drives, the
/// device's name, its requests, answered byte by byte from a drive behind it, and the
/// cancelling of a blocked one. All other files, handles and threads go to the real
/// system. One at a time, and the requests of one thread at a time. Works in programs
/// that are linked with WindowsDriveCalls.cpp.
class WindowsDriveStandIn {
public:
    enum Code : DWORD {
        checkVerify = 0x2D0800,
        readToc = 0x24000,
        rawRead = 0x2403E,
        passThrough = 0x4D014,
        queryProperty = 0x2D1400,
    };

    struct Opening {
        QString name;
        DWORD access = 0;
        DWORD sharing = 0;
        DWORD disposition = 0;
        DWORD attributes = 0;
        bool plain = false; ///< neither security attributes nor a template
        bool operator==(const Opening&) const = default;
    };

    /// What a request carried.
    struct Request {
        DWORD code = 0;
        QByteArray input; ///< as it was before the call
        DWORD outputSize = 0;
        bool hasInput = false;
        bool hasOutput = false;
        bool inPlace = false;     ///< one block is input and output
        bool synchronous = false; ///< waits, and says how much it returned
        quintptr data = 0;        ///< address of a pass-through's data
    };

    struct ThreadOpening {
        DWORD access = 0;
        bool inherited = false;
        DWORD thread = 0;
    };

    WindowsDriveStandIn(QString drive, DriveDevice& behind);
    ~WindowsDriveStandIn();
    WindowsDriveStandIn(const WindowsDriveStandIn&) = delete;
    WindowsDriveStandIn& operator=(const WindowsDriveStandIn&) = delete;

    QHash<QString, UINT> driveTypes; ///< by the root folder; any other is unknown
    DWORD logicalDrives = 0;
    DWORD openError = 0; ///< of every open
    DWORD openForWritingError = 0;
    DWORD openThreadError = 0;                 ///< of every open of a thread, which ends a hang by itself
    DWORD inquiryBytes = 36;                   ///< that the drive sends at most
    quint32 transferLimit = 0;                 ///< of one pass-through, as the adapter says; 0: none
    quint32 transferPages = 0;                 ///< the same in pages
    int adapterBytes = 32;                     ///< that the adapter says of itself
    std::optional<QByteArray> descriptorBlock; ///< in place of what the drive says
    QList<WindowsFault> faults;
    std::function<void()> onCancel; ///< in the middle of the cancelling call

    QList<Opening> opens;               ///< in order
    QList<Request> requests;            ///< in order
    QList<ThreadOpening> threadsOpened; ///< in order
    int cancels = 0;
    int openHandles() const; ///< of the device and of threads

    /// The calls themselves; empty for what is none of this drive's.
    static std::optional<HANDLE> handleCreateFile(const wchar_t* name, DWORD access, DWORD sharing,
                                                  const void* security, DWORD disposition, DWORD attributes,
                                                  HANDLE model);
    static std::optional<BOOL> handleRequest(HANDLE file, DWORD code, void* input, DWORD inputSize,
                                             void* output, DWORD outputSize, DWORD* returned,
                                             const OVERLAPPED* overlapped);
    static void handleClose(HANDLE handle);
    static std::optional<DWORD> handleLogicalDrives();
    static std::optional<UINT> handleDriveType(const wchar_t* root);
    /// Nothing while no drive stands in.
    static bool refusesThread(DWORD access, BOOL inherited, DWORD thread);
    static void handleThreadOpened(HANDLE thread);
    static std::optional<BOOL> handleCancel(HANDLE thread);
    /// A thread that asks for its own number is about to be watched.
    static void handleThreadAsked(DWORD thread);

private:
    struct Call {
        QByteArray input;
        std::span<quint8> output;
        DWORD returned = 0;
        DWORD error = 0;
        bool hangs = false;
    };

    BOOL request(DWORD code, void* input, DWORD inputSize, void* output, DWORD outputSize, DWORD* returned,
                 const OVERLAPPED* overlapped);
    std::optional<WindowsFault> faultFor(DWORD code, const QByteArray& input);
    void answer(DWORD code, Call& call);
    void answerToc(Call& call);
    void answerRaw(Call& call);
    void answerPassThrough(Call& call);
    void answerDescriptor(Call& call);
    QByteArray adapterBlock() const;
    void awaitCancel(Call& call);
    bool owns(HANDLE handle) const;

    QString name;
    DriveDevice& device;
    mutable std::mutex mutex; ///< of the handles and of the cancelling
    std::condition_variable changed;
    QList<HANDLE> handles;
    bool cancelled = false;
    bool leftAlone = false;
    std::atomic<DWORD> watchedThread = 0;
};
