#include "metadata/http/WindowsHttpConversation.h"

DWORD_PTR WindowsHttpConversation::listen(HINTERNET request,
                                          const std::shared_ptr<WindowsHttpConversation>& conversation)
{
    auto holder = std::make_unique<std::shared_ptr<WindowsHttpConversation>>(conversation);
    auto* context = holder.get();
    if (!WinHttpSetOption(request, WINHTTP_OPTION_CONTEXT_VALUE, &context, sizeof context)
        || WinHttpSetStatusCallback(request, &WindowsHttpConversation::onStatus,
                                    WINHTTP_CALLBACK_FLAG_ALL_NOTIFICATIONS, 0)
               == WINHTTP_INVALID_STATUS_CALLBACK)
        return 0;
    (void)holder.release(); // the callback's, until the handle closes
    return reinterpret_cast<DWORD_PTR>(context);
}

void CALLBACK WindowsHttpConversation::onStatus(HINTERNET, DWORD_PTR context, DWORD status, void* information,
                                                DWORD length)
{
    auto* holder = reinterpret_cast<std::shared_ptr<WindowsHttpConversation>*>(context);
    if (!holder)
        return;
    if (status == WINHTTP_CALLBACK_STATUS_HANDLE_CLOSING)
        delete holder;
    else
        (*holder)->take(status, information, length);
}

void WindowsHttpConversation::take(DWORD status, const void* information, DWORD length)
{
    const std::lock_guard lock(mutex);
    sign = Clock::now();
    switch (status) {
    case WINHTTP_CALLBACK_STATUS_RESOLVING_NAME:
    case WINHTTP_CALLBACK_STATUS_CONNECTING_TO_SERVER:
    case WINHTTP_CALLBACK_STATUS_REDIRECT:
        connected = false;
        break;
    case WINHTTP_CALLBACK_STATUS_SENDING_REQUEST:
        connected = true;
        break;
    case WINHTTP_CALLBACK_STATUS_SENDREQUEST_COMPLETE:
    case WINHTTP_CALLBACK_STATUS_HEADERS_AVAILABLE:
        tell({true, 0, 0});
        break;
    case WINHTTP_CALLBACK_STATUS_DATA_AVAILABLE:
        tell({true, 0, *static_cast<const DWORD*>(information)});
        break;
    case WINHTTP_CALLBACK_STATUS_READ_COMPLETE:
        tell({true, 0, length});
        break;
    case WINHTTP_CALLBACK_STATUS_REQUEST_ERROR:
        tell({false, static_cast<const WINHTTP_ASYNC_RESULT*>(information)->dwError, 0});
        break;
    default:
        break;
    }
}

void WindowsHttpConversation::tell(const Reply& told)
{
    reply = told;
    changed.notify_all();
}

std::optional<WindowsHttpConversation::Reply> WindowsHttpConversation::within(std::chrono::milliseconds time)
{
    std::unique_lock lock(mutex);
    changed.wait_for(lock, time, [this] { return reply.has_value(); });
    return std::exchange(reply, std::nullopt);
}

bool WindowsHttpConversation::isConnected() const
{
    const std::lock_guard lock(mutex);
    return connected;
}

WindowsHttpConversation::Clock::time_point WindowsHttpConversation::lastSign() const
{
    const std::lock_guard lock(mutex);
    return sign;
}
