#include "ExpectedBody.h"
#include "support/LoopbackSocket.h"

#include <gtest/gtest.h>

#include <atomic>

// A transport's detour is the proxy that it is given.

namespace {

void expectNoAnswer(quint16 proxyPort, const QString& url)
{
    const HttpDetour way{proxyPort, proxyPort, {}};
    const auto transport = makeHttpTransport({}, &way);
    const HttpTransportOverride inPlace(*transport);
    int status = -1;
    EXPECT_TRUE(httpGet(url, &status).isEmpty()) << qPrintable(url);
    EXPECT_EQ(status, 0) << qPrintable(url);
}

} // namespace

TEST(WindowsHttpProxy, ThatIsNotThereIsNoAnswer)
{
    quint16 port = 0;
    const auto nobodyListens = loopbacksocket::bindSomewhere(port);
    expectNoAnswer(port, address);
    expectNoAnswer(port, secureAddress);
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
