#include "metadata/http/Http.h"
#include "support/LoopbackServices.h"

#include <gtest/gtest.h>

namespace {

// The host is an address of the loopback too, so that even a transport that
// passes the proxy by stays on this machine.
const QString address = QStringLiteral("http://127.0.0.2/x?y");
const QString secureAddress = QStringLiteral("https://127.0.0.2/x?y");

class HttpProxy : public testing::Test {
protected:
    void SetUp() override
    {
        const QByteArray proxy = "http://127.0.0.1:" + QByteArray::number(services.detour().plainPort);
        qputenv("http_proxy", proxy);
        qputenv("https_proxy", proxy);
        for (const char* name : {"no_proxy", "NO_PROXY", "all_proxy", "ALL_PROXY", "HTTPS_PROXY"})
            qunsetenv(name);
    }
    void TearDown() override
    {
        qunsetenv("http_proxy");
        qunsetenv("https_proxy");
    }

    LoopbackServices services;
    const std::unique_ptr<HttpTransport> direct = makeHttpTransport();
    const HttpTransportOverride inPlace{*direct};
};

} // namespace

TEST_F(HttpProxy, OfTheSystemIsAskedWithTheWholeAddress)
{
    services.on("127.0.0.2", "/x?y", page("through the proxy"));
    EXPECT_EQ(httpGet(address), "through the proxy");
    ASSERT_EQ(services.requests().size(), 1);
    EXPECT_TRUE(services.requests().first().askedAsProxy);
    EXPECT_EQ(services.requests().first().values("User-Agent").size(), 2);
}

TEST_F(HttpProxy, ThatRefusesATunnelIsNoAnswer)
{
    services.on("127.0.0.2:443", "127.0.0.2:443", errorPage(403));
    int status = -1;
    EXPECT_TRUE(httpGet(secureAddress, &status).isEmpty());
    EXPECT_EQ(status, 0);
    EXPECT_EQ(services.targets("127.0.0.2:443"), QList<QByteArray>{"127.0.0.2:443"});
}
