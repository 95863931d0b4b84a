#include "ExpectedBody.h"
#include "support/LogCapture.h"
#include "support/LoopbackSocket.h"

#include <windows.h>

#include <winhttp.h>

#include <gtest/gtest.h>

#include <atomic>
#include <string>

// A transport's detour is the proxy that it is given; without one the system's decides.

namespace {

/// Notes what a session asks for during its lifetime, and refuses it.
struct RefusedSession {
    static inline RefusedSession* active = nullptr;

    RefusedSession() { active = this; }
    ~RefusedSession() { active = nullptr; }

    DWORD access = ~DWORD(0);
    std::wstring proxy;
    DWORD flags = 0;
};

/// The warnings of a request that gets none.
QStringList expectNoAnswer(quint16 proxyPort, const QString& url)
{
    const HttpDetour way{proxyPort, proxyPort, {}};
    const auto transport = makeHttpTransport({}, &way);
    const HttpTransportOverride inPlace(*transport);
    const LogCapture log;
    int status = -1;
    EXPECT_TRUE(httpGet(url, &status).isEmpty()) << qPrintable(url);
    EXPECT_EQ(status, 0) << qPrintable(url);
    return log.warnings();
}

} // namespace

// In the place of the system's, under both names: whether a header asks for the import
// pointer or for the function behind it depends on MinGW's version.
extern "C" {

HINTERNET WINAPI openSession(LPCWSTR agent, DWORD access, LPCWSTR proxy, LPCWSTR bypass,
                             DWORD flags) asm("WinHttpOpen");
decltype(&WinHttpOpen) __imp_WinHttpOpen = openSession;

} // extern "C"

HINTERNET WINAPI openSession(LPCWSTR agent, DWORD access, LPCWSTR proxy, LPCWSTR bypass, DWORD flags)
{
    if (RefusedSession* const refused = RefusedSession::active) {
        refused->access = access;
        refused->proxy = proxy ? proxy : L"";
        refused->flags = flags;
        return nullptr;
    }
    static const auto real = reinterpret_cast<decltype(&WinHttpOpen)>(
        reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(L"winhttp.dll"), "WinHttpOpen")));
    return real(agent, access, proxy, bypass, flags);
}

TEST(WindowsHttpProxy, OfTheSystemIsTakenWithoutADetour)
{
    const RefusedSession refused;
    const auto transport = makeHttpTransport({}, nullptr);
    const HttpTransportOverride inPlace(*transport);
    EXPECT_TRUE(httpGet(address).isEmpty());
    EXPECT_EQ(refused.access, DWORD(WINHTTP_ACCESS_TYPE_DEFAULT_PROXY));
    EXPECT_EQ(refused.proxy, L"");
    EXPECT_EQ(refused.flags, DWORD(WINHTTP_FLAG_ASYNC));
}

TEST(WindowsHttpProxy, OfADetourIsTakenAsItIs)
{
    const RefusedSession refused;
    const HttpDetour way{4711, 4711, {}};
    const auto transport = makeHttpTransport({}, &way);
    const HttpTransportOverride inPlace(*transport);
    EXPECT_TRUE(httpGet(address).isEmpty());
    EXPECT_EQ(refused.access, DWORD(WINHTTP_ACCESS_TYPE_NAMED_PROXY));
    EXPECT_EQ(refused.proxy, L"127.0.0.1:4711");
}

TEST(WindowsHttpProxy, ThatIsNotThereIsNoAnswer)
{
    quint16 port = 0;
    const auto nobodyListens = loopbacksocket::bindSomewhere(port);
    const QStringList noConnection{QStringLiteral("[HTTP] request failed, err= 12029")};
    EXPECT_EQ(expectNoAnswer(port, address), noConnection);
    EXPECT_EQ(expectNoAnswer(port, secureAddress), noConnection);
    loopbacksocket::close(nobodyListens);
}

TEST(WindowsHttpProxy, ThatRefusesATunnelIsNoAnswer)
{
    std::atomic<int> asked = 0;
    const LoopbackServer proxy(
        [&asked](const ServedRequest&) {
            ++asked;
            return errorPage(403);
        },
        nullptr);
    expectNoAnswer(proxy.port(), secureAddress);
    EXPECT_EQ(asked, 1);
}

TEST(WindowsHttpProxy, ARedirectInPlaceOfATunnelIsNotFollowed)
{
    std::atomic<int> asked = 0;
    const LoopbackServer proxy(
        [&asked](const ServedRequest&) {
            ++asked;
            return redirect("http://b.test/elsewhere");
        },
        nullptr);
    expectNoAnswer(proxy.port(), secureAddress);
    EXPECT_EQ(asked, 1);
}
