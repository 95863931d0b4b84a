// What WinHTTP does as well, and Wine's does not: it leaves out the agent's name where
// there is a header of that kind, keeps connections beyond their session, takes a head
// that breaks off for one that ends, and an interim one for the answer, waits for the next
// chunk before it hands on one, hands on what lies behind the length of a body, and needs
// minutes for a hundred thousand lines.

#include "ExpectedBody.h"

#include <chrono>
#include <thread>

TEST(LinuxHttp, TwoUserAgentLinesAreSent)
{
    LoopbackServices services;
    httpGet(QStringLiteral("http://a.test"));
    gnudbGet(QStringLiteral("http://a.test"));
    CoverArt::get(QStringLiteral("http://a.test"));
    const QList<ServedRequest> requests = services.requests();
    ASSERT_EQ(requests.size(), 3);
    for (const ServedRequest& request : requests) {
        const QList<QByteArray> agents = request.values("User-Agent");
        ASSERT_EQ(agents.size(), 2);
        EXPECT_EQ(agents[0], "TarvelCDRipper/1.0");
        EXPECT_TRUE(agents[1].startsWith("TarvelCDRipper/1.0 ( "));
    }
}

TEST(LinuxHttp, EachCallHasAConnectionOfItsOwnAndClosesIt)
{
    LoopbackServices services;
    services.on("a.test", "/", page("x"));
    for (int i = 1; i <= 3; ++i) {
        EXPECT_EQ(httpGet(address), "x");
        EXPECT_EQ(services.connections(), i);
    }
    for (int wait = 0; wait < 100 && services.openConnections() > 0; ++wait)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(services.openConnections(), 0);
}

TEST(LinuxHttp, AHeadThatBreaksOffIsNoAnswer)
{
    ServedAnswer half;
    half.raw = "HTTP/1.1 200 OK\r\nContent-Le";
    expectBody(half, {}, 0);
    half.raw = "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n";
    expectBody(half, {}, 0);
}

TEST(LinuxHttp, AnEndlessHeadIsNoAnswer)
{
    ServedAnswer endless;
    endless.raw = "HTTP/1.1 200 OK\r\n";
    for (int i = 0; i < 100'000; ++i)
        endless.raw += "X-" + QByteArray::number(i) + ": y\r\n";
    endless.raw += "Content-Length: 2\r\n\r\nok";
    expectBody(endless, {}, 0);
}

TEST(LinuxHttp, AStallWithinAChunkedBodyEndsIt)
{
    ServedAnswer stalls = page("0123456789");
    stalls.stallAfter = 4;
    stalls.framing = ServedAnswer::Framing::Chunked;
    expectBody(stalls, "0123", 200, shortLimits());
}

TEST(LinuxHttp, BehindAnInterimHeadComesTheAnswer)
{
    ServedAnswer interim;
    interim.raw = "HTTP/1.1 103 Early Hints\r\nLink: </x>\r\n\r\n"
                  "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok";
    expectBody(interim, "ok", 200);
}

TEST(LinuxHttp, ALengthWithinTheBodyCutsIt)
{
    ServedAnswer lying = page("0123456789");
    lying.claimedLength = 4;
    expectBody(lying, "0123", 200);
}
