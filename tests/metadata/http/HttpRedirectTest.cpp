#include "metadata/http/Http.h"
#include "metadata/lookup/CoverArt.h"
#include "support/LogCapture.h"
#include "support/LoopbackServices.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

namespace {

QByteArray number(int value)
{
    return QByteArray::number(value);
}

} // namespace

TEST(HttpRedirect, AStepFromHttpsToHttpIsRefusedByGnuDbAlone)
{
    LoopbackServices services;
    services.on("a.test", "/start", redirect("http://b.test/end"));
    services.on("b.test", "/end", page("arrived"));
    const QString start = QStringLiteral("https://a.test/start");
    int status = 0;
    EXPECT_EQ(httpGet(start, &status), "arrived");
    EXPECT_EQ(status, 200);
    EXPECT_EQ(CoverArt::get(start), "arrived");
    EXPECT_EQ(services.targets("b.test").size(), 2);
    EXPECT_TRUE(gnudbGet(start).isEmpty());
    EXPECT_EQ(services.targets("b.test").size(), 2);
}

TEST(HttpRedirect, CapitalsInTheSchemeDoNotHideAStepDown)
{
    LoopbackServices services;
    services.on("a.test", "/start", redirect("HTTP://b.test/end"));
    services.on("b.test", "/end", page("arrived"));
    EXPECT_TRUE(gnudbGet(QStringLiteral("https://a.test/start")).isEmpty());
    EXPECT_TRUE(services.targets("b.test").isEmpty());
}

TEST(HttpRedirect, AStepFromHttpToHttpsIsFollowedByAll)
{
    LoopbackServices services;
    services.on("a.test", "/start", redirect("https://b.test/end"));
    services.on("b.test", "/end", page("arrived"));
    const QString start = QStringLiteral("http://a.test/start");
    EXPECT_EQ(httpGet(start), "arrived");
    EXPECT_EQ(gnudbGet(start), "arrived");
    EXPECT_EQ(CoverArt::get(start), "arrived");
    EXPECT_TRUE(services.requests().last().secure);
}

TEST(HttpRedirect, UpAndDownAgainIsRefusedByGnuDb)
{
    LoopbackServices services;
    services.on("a.test", "/start", redirect("https://b.test/down"));
    services.on("b.test", "/down", redirect("http://a.test/end"));
    services.on("a.test", "/end", page("arrived"));
    EXPECT_TRUE(gnudbGet(QStringLiteral("http://a.test/start")).isEmpty());
    EXPECT_EQ(httpGet(QStringLiteral("http://a.test/start")), "arrived");
}

TEST(HttpRedirect, EveryKindOfRedirectIsFollowed)
{
    for (const int status : {301, 302, 303, 307, 308}) {
        LoopbackServices services;
        services.on("a.test", "/start", redirect("/end", status));
        services.on("a.test", "/end", page("arrived"));
        EXPECT_EQ(httpGet(QStringLiteral("http://a.test/start")), "arrived") << status;
        EXPECT_EQ(gnudbGet(QStringLiteral("http://a.test/start")), "arrived") << status;
    }
}

TEST(HttpRedirect, RelativeLocationsAreResolved)
{
    LoopbackServices services;
    services.on("a.test", "/one/two", redirect("three?x=1"));
    services.on("a.test", "/one/three", redirect("//b.test/four"));
    services.on("b.test", "/four", page("arrived"));
    EXPECT_EQ(httpGet(QStringLiteral("http://a.test/one/two")), "arrived");
    EXPECT_EQ(services.targets("a.test").last(), "/one/three?x=1");
}

TEST(HttpRedirect, BothUserAgentLinesGoAlong)
{
    LoopbackServices services;
    services.on("a.test", "/start", redirect("https://b.test/end"));
    CoverArt::get(QStringLiteral("http://a.test/start"));
    ASSERT_EQ(services.requests().size(), 2);
    EXPECT_EQ(services.requests()[1].values("User-Agent"), services.requests()[0].values("User-Agent"));
}

TEST(HttpRedirect, ARedirectWithoutLocationIsAnAnswer)
{
    LoopbackServices services;
    ServedAnswer lost = errorPage(302);
    services.on("a.test", "/", lost);
    int status = 0;
    EXPECT_TRUE(httpGet(QStringLiteral("http://a.test/"), &status).isEmpty());
    EXPECT_EQ(status, 302);
    EXPECT_EQ(CoverArt::get(QStringLiteral("http://a.test/")), lost.body);
}

TEST(HttpRedirect, TenAreFollowedAndElevenAreNoAnswer)
{
    LoopbackServices services;
    for (int i = 0; i < 11; ++i)
        services.on("a.test", "/step" + number(i) + "/", redirect("/step" + number(i + 1) + "/"));
    services.on("a.test", "/step11/", page("arrived"));
    int status = -1;
    EXPECT_EQ(httpGet(QStringLiteral("http://a.test/step1/"), &status), "arrived");
    EXPECT_EQ(status, 200);
    EXPECT_TRUE(httpGet(QStringLiteral("http://a.test/step0/"), &status).isEmpty());
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(CoverArt::get(QStringLiteral("http://a.test/step0/")).isEmpty());
}

TEST(HttpRedirect, AHangUpBehindARedirectIsAFailedRequest)
{
    LoopbackServices services;
    ServedAnswer hangsUp;
    hangsUp.dropped = true;
    services.on("a.test", "/", redirect("/end"));
    services.on("a.test", "/end", hangsUp);
    const LogCapture log;
    int status = -1;
    EXPECT_TRUE(httpGet(QStringLiteral("http://a.test/"), &status).isEmpty());
    EXPECT_EQ(status, 0);
    ASSERT_EQ(log.warnings().size(), 1);
    EXPECT_TRUE(log.warnings().first().startsWith(QLatin1String("[HTTP] request failed, err= ")));
}

TEST(HttpRedirect, TheLimitOfAHeadHoldsForEachByItself)
{
    ServedAnswer wordy = redirect("/end");
    ServedAnswer end = page("arrived");
    for (ServedAnswer* answer : {&wordy, &end})
        answer->headers.append("X-Filler: " + QByteArray(500, 'y'));
    HttpLimits limits;
    limits.headBytes = wordy.head().size() + end.head().size() - 1;
    LoopbackServices services(limits);
    services.on("a.test", "/", wordy);
    services.on("a.test", "/end", end);
    EXPECT_EQ(httpGet(QStringLiteral("http://a.test/")), "arrived");
}

TEST(HttpRedirect, ALoopEnds)
{
    LoopbackServices services;
    services.on("a.test", "/", redirect("/again"));
    int status = -1;
    EXPECT_TRUE(httpGet(QStringLiteral("http://a.test/"), &status).isEmpty());
    EXPECT_EQ(status, 0);
    EXPECT_EQ(services.requests().size(), 11);
}

TEST(HttpRedirect, NoOtherSchemeIsEverFollowed)
{
    for (const char* location : {"file:///etc/hostname", "ftp://a.test/x", "gopher://a.test/x",
                                 "data:text/plain,x", "javascript:1", "dict://a.test/x"}) {
        LoopbackServices services;
        services.on("a.test", "/", redirect(location));
        const LogCapture log;
        EXPECT_TRUE(httpGet(QStringLiteral("http://a.test/")).isEmpty()) << location;
        EXPECT_TRUE(log.warnings().value(0).startsWith(QLatin1String("[HTTP] request failed, err= ")))
            << location;
        EXPECT_TRUE(gnudbGet(QStringLiteral("http://a.test/")).isEmpty()) << location;
        EXPECT_TRUE(CoverArt::get(QStringLiteral("http://a.test/")).isEmpty()) << location;
        EXPECT_EQ(services.requests().size(), 3) << location;
    }
}

TEST(HttpRedirect, TheBodyOfARedirectIsNotWaitedFor)
{
    LoopbackServices services;
    ServedAnswer step = redirect("/end");
    step.stallAfter = 10;
    services.on("a.test", "/start", step);
    services.on("a.test", "/end", page("arrived"));
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(httpGet(QStringLiteral("http://a.test/start")), "arrived");
    EXPECT_EQ(CoverArt::get(QStringLiteral("http://a.test/start")), "arrived");
    EXPECT_LT(timer.elapsed(), HttpLimits().silenceMilliseconds / 2);
}

TEST(HttpRedirect, CapitalsAndEscapesInALocationLeadToTheSamePlace)
{
    for (const char* location : {"HTTP://B.TEST/End%2f?X=%2B", "http://%62.test/End%2f?X=%2B"}) {
        LoopbackServices services;
        services.on("a.test", "/start", redirect(location));
        httpGet(QStringLiteral("http://a.test/start"));
        ASSERT_EQ(services.requests().size(), 2) << location;
        EXPECT_EQ(services.requests()[1].host.toLower(), "b.test") << location;
        EXPECT_EQ(services.requests()[1].target, "/End%2f?X=%2B") << location;
    }
}

TEST(HttpRedirect, AnUnencodedLocationIsEncoded)
{
    LoopbackServices services;
    services.on("a.test", "/start", redirect("/a b/\xE6\x97\xA5"));
    httpGet(QStringLiteral("http://a.test/start"));
    EXPECT_EQ(services.targets("a.test").last().toUpper(), "/A%20B/%E6%97%A5");
}

TEST(HttpRedirect, MarksThatMayStandInARequestLineStayAsTheyAre)
{
    LoopbackServices services;
    services.on("a.test", "/start", redirect("/{a}|\"b\"/<c>?[d]^`"));
    httpGet(QStringLiteral("http://a.test/start"));
    EXPECT_EQ(services.targets("a.test").last(), "/{a}|\"b\"/<c>?[d]^`");
}
