#include "metadata/http/Http.h"
#include "metadata/lookup/CoverArt.h"
#include "support/LoopbackServices.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

namespace {

void expectRefused(const QString& url)
{
    LoopbackServices services;
    services.on("expired.test", "/", page("x"));
    services.on("stranger.test", "/", page("x"));
    services.on("elsewhere.invalid", "/", page("x"));
    int status = -1;
    EXPECT_TRUE(httpGet(url, &status).isEmpty());
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(gnudbGet(url).isEmpty());
    EXPECT_TRUE(CoverArt::get(url).isEmpty());
    EXPECT_TRUE(services.requests().isEmpty());
    EXPECT_EQ(services.connections(), 3);
}

} // namespace

TEST(HttpSecurity, ACertificateOfTheTestsAuthorityIsTaken)
{
    LoopbackServices services;
    services.on("a.test", "/", page("x"));
    EXPECT_EQ(httpGet(QStringLiteral("https://a.test/")), "x");
    EXPECT_EQ(gnudbGet(QStringLiteral("https://a.test/")), "x");
    EXPECT_EQ(CoverArt::get(QStringLiteral("https://a.test/")), "x");
}

TEST(HttpSecurity, ACertificateThatHasRunOutIsRefused)
{
    expectRefused(QStringLiteral("https://expired.test/"));
}

TEST(HttpSecurity, ACertificateOfAStrangerIsRefused)
{
    expectRefused(QStringLiteral("https://stranger.test/"));
}

TEST(HttpSecurity, ACertificateForAnotherHostIsRefused)
{
    expectRefused(QStringLiteral("https://elsewhere.invalid/"));
}

TEST(HttpSecurity, ARedirectToARefusedCertificateIsNoAnswer)
{
    LoopbackServices services;
    services.on("a.test", "/", redirect("https://stranger.test/"));
    services.on("stranger.test", "/", page("x"));
    int status = -1;
    EXPECT_TRUE(httpGet(QStringLiteral("http://a.test/"), &status).isEmpty());
    EXPECT_EQ(status, 0);
}

TEST(HttpSecurity, ThePlainPortIsNoSecureServer)
{
    LoopbackServices services;
    const HttpDetour crossed{services.detour().securePort, services.detour().plainPort,
                             services.detour().certificateAuthority};
    HttpLimits limits;
    limits.connectMilliseconds = 1'000;
    limits.silenceMilliseconds = 1'000;
    const auto transport = makeHttpTransport(limits, &crossed);
    const HttpTransportOverride inPlace(*transport);
    int status = -1;
    EXPECT_TRUE(httpGet(QStringLiteral("https://a.test/"), &status).isEmpty());
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(httpGet(QStringLiteral("http://a.test/"), &status).isEmpty());
    EXPECT_EQ(status, 0);
}

TEST(HttpSecurity, AHandshakeThatNeverComesEndsByTheConnectLimit)
{
    // Takes the greeting for the start of a request of plain HTTP, and waits for the rest.
    LoopbackServer mute([](const ServedRequest&) { return silence(); }, nullptr);
    LoopbackServices services;
    const HttpDetour toMute{mute.port(), mute.port(), services.detour().certificateAuthority};
    HttpLimits limits;
    limits.connectMilliseconds = 700;
    const auto transport = makeHttpTransport(limits, &toMute);
    const HttpTransportOverride inPlace(*transport);
    QElapsedTimer timer;
    timer.start();
    int status = -1;
    EXPECT_TRUE(httpGet(QStringLiteral("https://a.test/"), &status).isEmpty());
    EXPECT_EQ(status, 0);
    EXPECT_GE(timer.elapsed(), 690);
    EXPECT_LT(timer.elapsed(), 10'000);
}
