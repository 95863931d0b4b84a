#include "metadata/http/Http.h"
#include "metadata/http/ServiceHosts.h"
#include "metadata/lookup/CoverArt.h"
#include "support/LogCapture.h"
#include "support/LoopbackServices.h"
#include "support/LoopbackSocket.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

const QString base = QStringLiteral("http://a.test");

/// A port of the loopback where nobody listens, and nobody can as long as it lives:
/// it is bound, so the system gives it to no other program.
class ClosedPort {
public:
    ClosedPort() : socket(loopbacksocket::bindSomewhere(port)) {}
    ~ClosedPort() { loopbacksocket::close(socket); }
    ClosedPort(const ClosedPort&) = delete;
    ClosedPort& operator=(const ClosedPort&) = delete;

    quint16 number() const { return port; }

private:
    quint16 port = 0;
    const loopbacksocket::Socket socket;
};

QByteArray only(const QList<QByteArray>& targets)
{
    return targets.size() == 1 ? targets.first() : "not one target but " + QByteArray::number(targets.size());
}

} // namespace

TEST(HttpTarget, AnAddressWithoutPathAsksForTheRoot)
{
    LoopbackServices services;
    httpGet(base);
    gnudbGet(base);
    CoverArt::get(base);
    EXPECT_EQ(services.targets("a.test"), (QList<QByteArray>{"/", "/", "/"}));
}

TEST(HttpTarget, AQueryWithoutPathGoesOutBehindASlash)
{
    LoopbackServices services;
    httpGet(base + QStringLiteral("?q=1"));
    gnudbGet(base + QStringLiteral("?q=1"));
    CoverArt::get(base + QStringLiteral("?q=1"));
    EXPECT_EQ(services.targets("a.test"), (QList<QByteArray>{"/?q=1", "/?q=1", "/?q=1"}));
}

TEST(HttpTarget, PlusSignsAndTheirEscapesStayInAQuery)
{
    LoopbackServices services;
    const QString address = base + QStringLiteral("/cgi?cmd=a+b&c=d%2Be&f=g%20h");
    httpGet(address);
    gnudbGet(address);
    CoverArt::get(address);
    EXPECT_EQ(services.targets("a.test"),
              (QList<QByteArray>(3, QByteArrayLiteral("/cgi?cmd=a+b&c=d%2Be&f=g%20h"))));
}

TEST(HttpTarget, ThePathIsDecodedByTwoRoutinesAndKeptByTheThird)
{
    LoopbackServices services;
    const QString address = base + QStringLiteral("/%41%2fb%25");
    httpGet(address);
    gnudbGet(address);
    CoverArt::get(address);
    EXPECT_EQ(services.targets("a.test"), (QList<QByteArray>{"/A/b%", "/A/b%", "/%41%2fb%25"}));
}

TEST(HttpTarget, WhatMayNotStandInARequestLineIsEscaped)
{
    LoopbackServices services;
    httpGet(base + QStringLiteral("/a b/\u65e5%0D%0AX: y"));
    EXPECT_EQ(only(services.targets("a.test")), "/a%20b/%E6%97%A5%0D%0AX:%20y");
    CoverArt::get(base + QStringLiteral("/\"q\" <\u65e5>#x"));
    EXPECT_EQ(services.targets("a.test").last(), "/%22q%22%20%3C%E6%97%A5%3E%23x");
}

TEST(HttpTarget, DotsInThePathAreNotResolved)
{
    LoopbackServices services;
    CoverArt::get(base + QStringLiteral("/a/../b/./c"));
    EXPECT_EQ(only(services.targets("a.test")), "/a/../b/./c");
}

TEST(HttpTarget, TheFragmentOfAnAddressStaysHere)
{
    LoopbackServices services;
    httpGet(base + QStringLiteral("/a?b#c"));
    EXPECT_EQ(only(services.targets("a.test")), "/a?b");
}

TEST(HttpTarget, TheThirdRoutineCutsAtTheFirstOccurrenceOfTheHost)
{
    LoopbackServices services;
    CoverArt::get(base + QStringLiteral("/of/a.test/x?u=a.test"));
    EXPECT_EQ(only(services.targets("a.test")), "/of/a.test/x?u=a.test");
}

TEST(HttpTarget, APortInTheAddressIsIgnored)
{
    LoopbackServices services;
    services.on("a.test", "/", page("here"));
    EXPECT_EQ(httpGet(QStringLiteral("http://a.test:8080/x")), "here");
    EXPECT_EQ(httpGet(QStringLiteral("https://a.test:8080/x")), "here");
    EXPECT_EQ(CoverArt::get(QStringLiteral("http://a.test:8080/x")), "here");
    EXPECT_EQ(services.targets("a.test"), (QList<QByteArray>{"/x", "/x", "/:8080/x"}));
    EXPECT_TRUE(services.requests()[1].secure);
}

TEST(HttpTarget, CapitalsInTheHostDoNotHideIt)
{
    LoopbackServices services;
    httpGet(QStringLiteral("HTTP://A.Test/Path%2f"));
    CoverArt::get(QStringLiteral("HTTP://A.Test/Path%2f"));
    EXPECT_EQ(services.targets("a.test"), (QList<QByteArray>{"/Path/", "/Path%2f"}));
}

TEST(HttpTarget, EscapesInTheHostAreItsLetters)
{
    LoopbackServices services;
    const QString address = QStringLiteral("http://%61.test/x?q=1");
    httpGet(address);
    gnudbGet(address);
    CoverArt::get(address);
    EXPECT_EQ(services.targets("a.test"), QList<QByteArray>(3, "/x?q=1"));
}

TEST(HttpTarget, AHostInOtherLettersGoesOutInItsAsciiForm)
{
    LoopbackServices services;
    httpGet(QStringLiteral("http://b\u00fccher.test/x"));
    CoverArt::get(QStringLiteral("http://b\u00fccher.test/x"));
    EXPECT_EQ(services.targets("xn--bcher-kva.test"), (QList<QByteArray>{"/x", "/x"}));
}

// Under a name that Qt shows in its own letters, the host is found in the text.
TEST(HttpTarget, AHostInOtherLettersDoesNotHideThePathBehindIt)
{
    LoopbackServices services;
    const LogCapture log;
    httpGet(QStringLiteral("http://b\u00fccher.museum/%41"));
    CoverArt::get(QStringLiteral("http://b\u00fccher.museum/%41"));
    EXPECT_EQ(services.targets("xn--bcher-kva.museum"), (QList<QByteArray>{"/A", "/%41"}));
    EXPECT_EQ(log.debugLines().value(0).toStdString(), "[HTTP] host= b\u00fccher.museum path= /A");
}

TEST(HttpHeaders, TheContactIsSentAndNothingIsAccepted)
{
    LoopbackServices services;
    httpGet(base);
    gnudbGet(base);
    CoverArt::get(base);
    const QList<ServedRequest> requests = services.requests();
    ASSERT_EQ(requests.size(), 3);
    const QByteArray contact = ::services::contactAddress;
    for (const int i : {0, 1})
        EXPECT_EQ(requests[i].values("User-Agent").constLast(), "TarvelCDRipper/1.0 ( " + contact + " )");
    EXPECT_EQ(requests[2].values("User-Agent").constLast(), "TarvelCDRipper/1.0 ( contact@example.com )");
    for (const ServedRequest& request : requests) {
        for (const char* absent : {"Accept", "Accept-Encoding", "Referer", "Cookie"})
            EXPECT_TRUE(request.values(absent).isEmpty()) << absent;
    }
}

TEST(HttpStatus, A404IsEmptyForTwoRoutinesAndThePageForTheThird)
{
    LoopbackServices services;
    const ServedAnswer missing = errorPage(404);
    services.on("a.test", "/", missing);
    int status = -1;
    EXPECT_TRUE(httpGet(base, &status).isEmpty());
    EXPECT_EQ(status, 404);
    EXPECT_TRUE(gnudbGet(base).isEmpty());
    EXPECT_EQ(CoverArt::get(base), missing.body);
}

TEST(HttpStatus, OnlyA200HasABody)
{
    for (const int code : {201, 203, 204, 206, 304, 400, 403, 410, 429, 500, 503}) {
        LoopbackServices services;
        services.on("a.test", "/", errorPage(code));
        int status = -1;
        EXPECT_TRUE(httpGet(base, &status).isEmpty()) << code;
        EXPECT_EQ(status, code);
        EXPECT_TRUE(gnudbGet(base).isEmpty()) << code;
    }
}

TEST(HttpStatus, AnEmpty200IsEmptyWithItsStatus)
{
    LoopbackServices services;
    services.on("a.test", "/", page({}));
    int status = -1;
    EXPECT_TRUE(httpGet(base, &status).isEmpty());
    EXPECT_EQ(status, 200);
    EXPECT_TRUE(gnudbGet(base).isEmpty());
    EXPECT_TRUE(CoverArt::get(base).isEmpty());
}

TEST(HttpStatus, NoConnectionIsStatusZero)
{
    LoopbackServices services;
    const ClosedPort port;
    const HttpDetour nobody{port.number(), port.number(), services.detour().certificateAuthority};
    const auto transport = makeHttpTransport({}, &nobody);
    const HttpTransportOverride inPlace(*transport);
    int status = -1;
    EXPECT_TRUE(httpGet(base, &status).isEmpty());
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(gnudbGet(base).isEmpty());
    EXPECT_TRUE(CoverArt::get(base).isEmpty());
}

TEST(HttpStatus, AnAddressWithoutHostIsNoConnection)
{
    LoopbackServices services;
    for (const char* address :
         {"", "http://", "nothing", "http:///x", "http://a b/", "file:///etc/hostname"}) {
        const LogCapture log;
        int status = -1;
        EXPECT_TRUE(httpGet(QString::fromLatin1(address), &status).isEmpty()) << address;
        EXPECT_EQ(status, 0);
        EXPECT_EQ(log.warnings(), QStringList{QStringLiteral("[HTTP] WinHttpConnect failed")}) << address;
        EXPECT_EQ(log.debugLines().size(), 1) << address;
        EXPECT_TRUE(CoverArt::get(QString::fromLatin1(address)).isEmpty()) << address;
    }
    EXPECT_TRUE(services.requests().isEmpty());
}

TEST(HttpStatus, AnotherSchemeThanHttpsGoesToPort80)
{
    LoopbackServices services;
    services.on("a.test", "/", page("plain"));
    EXPECT_EQ(httpGet(QStringLiteral("ftp://a.test/x")), "plain");
    EXPECT_FALSE(services.requests().first().secure);
}

TEST(HttpLog, AnAnswerIsLoggedByHttpGetAlone)
{
    LoopbackServices services;
    services.on("a.test", "/", page("x"));
    const LogCapture log;
    gnudbGet(base);
    CoverArt::get(base);
    EXPECT_TRUE(log.lines().isEmpty());
    httpGet(base + QStringLiteral("/p?q=1"));
    EXPECT_EQ(log.debugLines(), (QStringList{QStringLiteral("[HTTP] host= a.test path= /p?q=1"),
                                             QStringLiteral("[HTTP] status= 200")}));
    EXPECT_TRUE(log.warnings().isEmpty());
}

TEST(HttpLog, AFailedRequestNamesTheErrorAndStatusZero)
{
    LoopbackServices services;
    ServedAnswer hangsUp;
    hangsUp.dropped = true;
    services.on("a.test", "/", hangsUp);
    const LogCapture log;
    httpGet(base);
    ASSERT_EQ(log.warnings().size(), 1);
    EXPECT_TRUE(log.warnings().first().startsWith(QLatin1String("[HTTP] request failed, err= ")));
    EXPECT_EQ(log.debugLines().last(), QStringLiteral("[HTTP] status= 0"));
}

TEST(HttpConnection, ACookieLivesForTheRedirectAndNotForTheNextCall)
{
    LoopbackServices services;
    ServedAnswer step = redirect("/end");
    step.headers.append("Set-Cookie: seen=yes; Path=/");
    services.on("a.test", "/start", step);
    services.on("a.test", "/end", page("x"));
    httpGet(base + QStringLiteral("/start"));
    httpGet(base + QStringLiteral("/end"));
    const QList<ServedRequest> requests = services.requests();
    ASSERT_EQ(requests.size(), 3);
    EXPECT_EQ(requests[1].values("Cookie"), QList<QByteArray>{"seen=yes"});
    EXPECT_TRUE(requests[2].values("Cookie").isEmpty());
}

TEST(HttpConnection, CallsFromManyThreadsKeepApart)
{
    LoopbackServices services;
    for (int i = 0; i < 8; ++i)
        services.on("a.test", "/" + QByteArray::number(i),
                    page(QByteArray(10'000, static_cast<char>('a' + i))));
    std::vector<std::thread> threads;
    std::atomic<int> right = 0;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([i, &right] {
            for (int turn = 0; turn < 5; ++turn) {
                const QString scheme = turn % 2 == 0 ? QStringLiteral("http") : QStringLiteral("https");
                const QByteArray body = httpGet(scheme + QStringLiteral("://a.test/%1").arg(i));
                right += body == QByteArray(10'000, static_cast<char>('a' + i)) ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(right, 40);
}
