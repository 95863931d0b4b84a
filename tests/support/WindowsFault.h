#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <windows.h>

#include <optional>

/// What goes wrong with a request. The data of the answer is filled in all the
/// same, as good as ever, so that a sign that is overlooked shows as good data.
struct WindowsFault {
    DWORD error = 0;               ///< of the call itself
    std::optional<DWORD> returned; ///< bytes that the call says it returned
    int status = 0;                ///< SCSI status of a pass-through, whose call is a success
    QByteArray sense;
    std::optional<DWORD> transferred; ///< bytes that a pass-through says it transferred
    bool hangs = false;               ///< the call lasts until it is cancelled

    int after = 0;                     ///< matching requests that pass first
    int times = 1;                     ///< requests that it strikes; negative: all from then on
    std::optional<DWORD> onCode;       ///< strikes these requests alone
    std::optional<quint32> fromSector; ///< strikes raw reads that begin there alone

    static WindowsFault withError(DWORD error);
    /// A check condition with sense data in the fixed format.
    static WindowsFault checkCondition(int key, int code, int qualifier);
    static WindowsFault hang();
    WindowsFault& forever();
    WindowsFault& only(DWORD requestCode);
    WindowsFault& afterRequests(int count);
};

/// Sense data in the fixed format, 18 bytes, of a current error.
QByteArray windowsSense(int key, int code, int qualifier);

inline QByteArray windowsSense(int key, int code, int qualifier)
{
    QByteArray sense(18, '\0');
    sense[0] = 0x70;
    sense[2] = static_cast<char>(key);
    sense[7] = 10; // bytes that follow
    sense[12] = static_cast<char>(code);
    sense[13] = static_cast<char>(qualifier);
    return sense;
}

inline WindowsFault WindowsFault::withError(DWORD error)
{
    WindowsFault fault;
    fault.error = error;
    return fault;
}

inline WindowsFault WindowsFault::checkCondition(int key, int code, int qualifier)
{
    WindowsFault fault;
    fault.status = 0x02;
    fault.sense = windowsSense(key, code, qualifier);
    return fault;
}

inline WindowsFault WindowsFault::hang()
{
    WindowsFault fault;
    fault.hangs = true;
    return fault;
}

inline WindowsFault& WindowsFault::forever()
{
    times = -1;
    return *this;
}

inline WindowsFault& WindowsFault::only(DWORD requestCode)
{
    onCode = requestCode;
    return *this;
}

inline WindowsFault& WindowsFault::afterRequests(int count)
{
    after = count;
    return *this;
}
