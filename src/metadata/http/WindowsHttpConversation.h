#pragma once

#include <windows.h>

#include <winhttp.h>

#include <QByteArray>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>

/// What an asynchronous WinHTTP request tells, in the order of its steps. WinHTTP
/// calls back from threads of its own, up to the end of the request's handle, which
/// may come after whoever waits has given up: both ends share this object.
class WindowsHttpConversation {
public:
    using Clock = std::chrono::steady_clock;

    struct Reply {
        bool ok = false;
        DWORD error = 0;
        DWORD amount = 0; ///< bytes that are there, or have been read
    };

    /// Makes a request handle report to this conversation. The handle keeps it
    /// alive until it is closed.
    /// @return  the context to send the request with, or 0
    static DWORD_PTR listen(HINTERNET request, const std::shared_ptr<WindowsHttpConversation>& conversation);

    /// The outcome of the step under way; nothing when none came within the time.
    std::optional<Reply> within(std::chrono::milliseconds time);

    /// Whether the request is on its way to the server, TLS included.
    bool isConnected() const;
    /// When something was last heard, or a connection begun.
    Clock::time_point lastSign() const;

    /// Where a read puts its bytes: it may still write after the wait was given up.
    QByteArray buffer;

private:
    static void CALLBACK onStatus(HINTERNET handle, DWORD_PTR context, DWORD status, void* information,
                                  DWORD length);
    void take(DWORD status, const void* information, DWORD length);
    void tell(const Reply& told);

    mutable std::mutex mutex;
    std::condition_variable changed;
    std::optional<Reply> reply;
    bool connected = false;
    Clock::time_point sign = Clock::now();
};
