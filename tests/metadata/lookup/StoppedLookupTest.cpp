// Lookups that make request after request, and the end of the program.

#include "DiscTables.h"
#include "metadata/http/HttpStatus.h"
#include "metadata/http/HttpTransport.h"
#include "metadata/lookup/GnuDb.h"

#include <gtest/gtest.h>

namespace {

constexpr int candidates = 200'001;

/// Answers the query with more candidates than anybody could read, each with a
/// record of no use, and is stopped in the middle.
class EndlessCandidates : public HttpTransport {
public:
    HttpAnswer get(const HttpRequest& request) override
    {
        HttpAnswer answer;
        answer.stage = HttpStage::Answered;
        answer.status = httpStatusOk;
        if (request.target.contains("cddb+query")) {
            answer.body = "210 Found exact matches, list follows\r\n";
            for (int i = 0; i < candidates; ++i)
                answer.body += "rock 0b015903 Choir / Album\r\n";
            answer.body += ".\r\n";
            return answer;
        }
        if (++reads == readsBeforeTheStop)
            stop();
        answer.body = "210 OK\r\nTTITLE0=One\r\n.\r\n";
        return answer;
    }
    void stop() override { stopped = true; }
    bool isStopped() const override { return stopped; }

    static constexpr int readsBeforeTheStop = 3;
    int reads = 0;

private:
    bool stopped = false;
};

} // namespace

TEST(StoppedLookup, CandidatesAreNotWalkedAfterTheStop)
{
    EndlessCandidates services;
    const HttpTransportOverride inPlace(services);
    const GnuDbResult found = gnudbLookup(discOf({0, 100, 200}, 300));
    EXPECT_TRUE(found.album.isEmpty());
    EXPECT_EQ(services.reads, EndlessCandidates::readsBeforeTheStop);
}

TEST(StoppedLookup, TheTransportOfTheMachineSaysThatItIsStopped)
{
    const auto transport = makeHttpTransport();
    EXPECT_FALSE(transport->isStopped());
    transport->stop();
    EXPECT_TRUE(transport->isStopped());
}
