#include "metadata/http/WindowsHttpConversation.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

struct HandleCloser {
    void operator()(HINTERNET handle) const { WinHttpCloseHandle(handle); }
};
using Handle = std::unique_ptr<std::remove_pointer_t<HINTERNET>, HandleCloser>;

} // namespace

TEST(WindowsHttpConversation, LivesAsLongAsItsRequest)
{
    const Handle session(WinHttpOpen(L"test", WINHTTP_ACCESS_TYPE_NO_PROXY, WINHTTP_NO_PROXY_NAME,
                                     WINHTTP_NO_PROXY_BYPASS, WINHTTP_FLAG_ASYNC));
    const Handle connection(WinHttpConnect(session.get(), L"127.0.0.1", 80, 0));
    Handle request(WinHttpOpenRequest(connection.get(), L"GET", L"/", nullptr, WINHTTP_NO_REFERER,
                                      WINHTTP_DEFAULT_ACCEPT_TYPES, 0));
    ASSERT_NE(request, nullptr);
    auto conversation = std::make_shared<WindowsHttpConversation>();
    const std::weak_ptr<WindowsHttpConversation> watched = conversation;
    ASSERT_NE(WindowsHttpConversation::listen(request.get(), conversation), 0U);
    conversation.reset();
    EXPECT_FALSE(watched.expired()) << "it may still be told of";

    request.reset();
    // The last word may come from a thread of WinHTTP.
    for (int tries = 0; tries < 1'000 && !watched.expired(); ++tries)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_TRUE(watched.expired());
}
