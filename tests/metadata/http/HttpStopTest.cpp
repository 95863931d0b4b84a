#include "ExpectedBody.h"
#include "support/LoopbackSocket.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

// A request that is stopped ends at once, however far it had come.

namespace {

constexpr int atOnce = 3'000; // where every limit of its own is longer
constexpr std::chrono::milliseconds untilItWaits{300};

/// A port that is connected to, and what becomes of it.
class Listener {
public:
    explicit Listener(int waiting) : socket(loopbacksocket::bindSomewhere(number))
    {
        loopbacksocket::listen(socket, waiting);
    }
    ~Listener() { loopbacksocket::close(socket); }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    HttpDetour detour(const QString& authority = {}) const { return {number, number, authority}; }

    /// Takes a connection up to the first bytes of TLS and answers these with nothing.
    /// @return  whether they came
    bool takeHandshake()
    {
        const auto client = loopbacksocket::acceptWithin(socket, atOnce);
        if (!client)
            return false;
        held = *client;
        QByteArray heard = hear();
        if (heard.startsWith("CONNECT ")) {
            constexpr char opened[] = "HTTP/1.1 200 OK\r\n\r\n";
            loopbacksocket::send(held, opened, sizeof opened - 1);
            heard = hear();
        }
        constexpr char handshake = 0x16;
        return heard.startsWith(handshake);
    }
    void hangUp() { loopbacksocket::close(held); }

private:
    QByteArray hear() const
    {
        std::array<char, 4096> bytes{};
        const qsizetype count = loopbacksocket::receive(held, bytes.data(), bytes.size());
        return {bytes.data(), std::max<qsizetype>(count, 0)};
    }

    quint16 number = 0;
    loopbacksocket::Socket socket;
    loopbacksocket::Socket held = 0;
};

HttpRequest requestToATest(bool secure)
{
    HttpRequest request;
    request.secure = secure;
    request.host = QStringLiteral("a.test");
    request.agentName = "Test";
    request.extraHeader = "Accept: */*";
    return request;
}

} // namespace

TEST(HttpStop, EndsConnectionsThatNobodyTakes)
{
    constexpr int requests = 3;
    Listener full(0); // one of the connections finds room, and is not accepted either
    const HttpDetour way = full.detour();
    const auto transport = makeHttpTransport({}, &way);
    std::vector<std::thread> threads;
    std::atomic<int> failed = 0;
    QElapsedTimer timer;
    for (int i = 0; i < requests; ++i)
        threads.emplace_back([&] { failed += transport->get(requestToATest(false)).status == 0; });
    std::this_thread::sleep_for(untilItWaits);
    EXPECT_EQ(failed, 0) << "nobody waits";
    timer.start();
    transport->stop();
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_LT(timer.elapsed(), atOnce);
    EXPECT_EQ(failed, requests);
}

TEST(HttpStop, EndsAHandshakeThatIsNotAnswered)
{
    const LoopbackServices trusted;
    Listener silent(1);
    const HttpDetour way = silent.detour(trusted.detour().certificateAuthority);
    const auto transport = makeHttpTransport({}, &way);
    HttpAnswer answer;
    std::atomic<bool> ended = false;
    std::thread asking([&] {
        answer = transport->get(requestToATest(true));
        ended = true;
    });
    EXPECT_TRUE(silent.takeHandshake());
    std::this_thread::sleep_for(untilItWaits);
    EXPECT_FALSE(ended) << "nobody waits";
    QElapsedTimer timer;
    timer.start();
    transport->stop();
    asking.join();
    EXPECT_LT(timer.elapsed(), atOnce);
    EXPECT_EQ(answer.status, 0);
    silent.hangUp();
}

TEST(HttpStop, EndsWhatIsUnderWayAndWhatComesLater)
{
    LoopbackServices services;
    services.on("a.test", "/", silence());
    std::thread stopper([&services] {
        while (services.requests().isEmpty())
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        services.transport().stop();
    });
    QElapsedTimer timer;
    timer.start();
    int status = -1;
    EXPECT_TRUE(httpGet(address, &status).isEmpty());
    stopper.join();
    EXPECT_LT(timer.elapsed(), 3'000);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(httpGet(address).isEmpty());
    EXPECT_EQ(services.requests().size(), 1);
}

TEST(HttpStop, ABodyThatIsStoppedIsNoAnswer)
{
    ServedAnswer stalls = page("0123456789");
    stalls.stallAfter = 4;
    LoopbackServices services;
    services.on("a.test", "/", stalls);
    std::thread stopper([&services] {
        while (services.requests().isEmpty())
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        // Long enough for the head to arrive; before it a stop is none either.
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        services.transport().stop();
    });
    int status = -1;
    EXPECT_TRUE(httpGet(address, &status).isEmpty());
    stopper.join();
    EXPECT_EQ(status, 0);
}
