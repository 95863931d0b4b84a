#include "metadata/http/Http.h"
#include "metadata/lookup/CoverArt.h"
#include "support/FakeHttpTransport.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

namespace {

const QString address = QStringLiteral("https://a.test/p?q");

std::function<HttpAnswer(const HttpRequest&)> endingAt(HttpStage stage, int status = 0, int errorCode = 0)
{
    const HttpAnswer answer{stage, status, errorCode, status > 0 ? QByteArray("body") : QByteArray()};
    return [answer](const HttpRequest&) { return answer; };
}

struct Logged {
    QStringList warnings;
    QStringList debugLines;
    int status = -1;
    QByteArray body;
};

Logged logged(const std::function<HttpAnswer(const HttpRequest&)>& ending)
{
    FakeHttpTransport transport(ending);
    const HttpTransportOverride inPlace(transport);
    const LogCapture log;
    Logged result;
    result.body = httpGet(address, &result.status);
    result.warnings = log.warnings();
    result.debugLines = log.debugLines();
    return result;
}

} // namespace

TEST(HttpStages, AFailureBeforeTheExchangeHasNoStatusLine)
{
    const QList<std::pair<HttpStage, QString>> failures{
        {HttpStage::Session, QStringLiteral("[HTTP] WinHttpOpen failed")},
        {HttpStage::Connect, QStringLiteral("[HTTP] WinHttpConnect failed")},
        {HttpStage::Request, QStringLiteral("[HTTP] WinHttpOpenRequest failed")},
    };
    for (const auto& [stage, warning] : failures) {
        const Logged result = logged(endingAt(stage));
        EXPECT_EQ(result.warnings, QStringList{warning});
        EXPECT_EQ(result.debugLines, QStringList{QStringLiteral("[HTTP] host= a.test path= /p?q")});
        EXPECT_EQ(result.status, 0);
        EXPECT_TRUE(result.body.isEmpty());
    }
}

TEST(HttpStages, AFailedExchangeNamesItsNumberAndStatusZero)
{
    const Logged result = logged(endingAt(HttpStage::Exchange, 0, 12'029));
    EXPECT_EQ(result.warnings, QStringList{QStringLiteral("[HTTP] request failed, err= 12029")});
    EXPECT_EQ(result.debugLines, (QStringList{QStringLiteral("[HTTP] host= a.test path= /p?q"),
                                              QStringLiteral("[HTTP] status= 0")}));
}

TEST(HttpStages, AnAnswerIsItsStatusAndItsBodyWhenThatIs200)
{
    EXPECT_EQ(logged(endingAt(HttpStage::Answered, 200)).body, "body");
    const Logged missing = logged(endingAt(HttpStage::Answered, 404));
    EXPECT_TRUE(missing.body.isEmpty());
    EXPECT_EQ(missing.status, 404);
    EXPECT_TRUE(missing.warnings.isEmpty());
}

TEST(HttpStages, TheThreeRoutinesAskForWhatTheyAreTo)
{
    FakeHttpTransport transport(endingAt(HttpStage::Answered, 200));
    const HttpTransportOverride inPlace(transport);
    const LogCapture quiet;
    httpGet(address);
    gnudbGet(address);
    CoverArt::get(address);
    const QList<HttpRequest> requests = transport.requests();
    ASSERT_EQ(requests.size(), 3);
    EXPECT_TRUE(requests[0].stepDownAllowed && !requests[0].bodyOfEveryStatus);
    EXPECT_TRUE(!requests[1].stepDownAllowed && !requests[1].bodyOfEveryStatus);
    EXPECT_TRUE(requests[2].stepDownAllowed && requests[2].bodyOfEveryStatus);
    for (const HttpRequest& request : requests) {
        EXPECT_TRUE(request.secure);
        EXPECT_EQ(request.host, QStringLiteral("a.test"));
        EXPECT_EQ(request.target, "/p?q");
        EXPECT_EQ(request.agentName, "TarvelCDRipper/1.0");
        EXPECT_TRUE(request.extraHeader.startsWith("User-Agent: TarvelCDRipper/1.0 ( "));
        EXPECT_TRUE(request.extraHeader.endsWith(" )"));
    }
}
