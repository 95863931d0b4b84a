// The memory that large answers take. Whoever stands between this machine and a
// service of plain HTTP can make answers of any text.

#include "DiscTables.h"
#include "metadata/lookup/GnuDb.h"
#include "support/FakeHttpTransport.h"
#include "support/LogCapture.h"
#include "support/PeakMemory.h"
#include "verify/AccurateRipDatabase.h"

#include <gtest/gtest.h>

namespace {

constexpr qsizetype answerBytes = 50'000'000;
// The answer, its text of two bytes a character, and as much again of what was
// just freed, which a sanitizer holds back.
constexpr qint64 memoryBound = 10 * answerBytes;

QByteArray manyTimes(const QByteArray& piece, const QByteArray& start = {})
{
    return start + piece.repeated((answerBytes - start.size()) / piece.size());
}

HttpAnswer answered(const QByteArray& body)
{
    HttpAnswer answer;
    answer.stage = HttpStage::Answered;
    answer.status = 200;
    answer.body = body;
    return answer;
}

/// A server with one answer to queries and one to reads.
struct GnuDbServer {
    GnuDbServer(const QByteArray& queryBody, const QByteArray& readBody)
        : transport([queryBody, readBody](const HttpRequest& request) {
              return answered(request.target.contains("cddb+query") ? queryBody : readBody);
          })
    {
    }

    FakeHttpTransport transport;
    HttpTransportOverride inPlace{transport};
};

const QByteArray goodRecord = "210 x\nDTITLE=Choir / Album\nTTITLE0=One\n.\n";

void expectBounded(const PeakMemory& memory)
{
    EXPECT_GE(memory.growth(), 0) << "no measurement";
    EXPECT_LT(memory.growth(), memoryBound);
}

/// What a lookup against these answers gives, within the bound.
GnuDbResult boundedLookup(const QByteArray& queryBody, const QByteArray& readBody)
{
    const GnuDbServer server(queryBody, readBody);
    const LogCapture quiet;
    const PeakMemory memory;
    const GnuDbResult result = gnudbLookup(discOf({0}, 4'000));
    expectBounded(memory);
    return result;
}

} // namespace

TEST(AnswerMemory, OfARecordOfManyLines)
{
    const LogCapture quiet;
    for (const char* line : {"\n", "a b\n", " \r\n"}) {
        const QString text = QString::fromLatin1(manyTimes(line, "DTITLE=Choir / Album\nTTITLE0=One\n"));
        const PeakMemory memory;
        const GnuDbResult result = parseXmcd(text);
        expectBounded(memory);
        EXPECT_EQ(result.album, QStringLiteral("Album"));
        EXPECT_EQ(result.tracks.size(), 1);
    }
}

TEST(AnswerMemory, OfAQueryOfManyEmptyLines)
{
    EXPECT_TRUE(boundedLookup(manyTimes("\n"), {}).album.isEmpty());
    EXPECT_TRUE(boundedLookup(manyTimes("\n", "211 x\n"), {}).album.isEmpty());
}

TEST(AnswerMemory, OfAQueryOfManyCandidates)
{
    EXPECT_EQ(boundedLookup(manyTimes("a b\n", "211 x\n"), goodRecord).album, QStringLiteral("Album"));
}

TEST(AnswerMemory, OfAStatusLineOfManyWords)
{
    EXPECT_EQ(boundedLookup(manyTimes(" ", "200 rock 0b015903 "), goodRecord).album, QStringLiteral("Album"));
    EXPECT_EQ(boundedLookup(manyTimes(" ", "211 x\nrock 0b015903 "), goodRecord).album,
              QStringLiteral("Album"));
}

TEST(AnswerMemory, OfARecordOfManyLinesThatIsLookedUp)
{
    const QByteArray record = manyTimes("\n", goodRecord);
    EXPECT_EQ(boundedLookup("200 rock 0b015903 x\n", record).album, QStringLiteral("Album"));
    EXPECT_EQ(boundedLookup("210 x\nrock 0b015903 x\n.\n", record).album, QStringLiteral("Album"));
}

TEST(AnswerMemory, OfALargeVerificationFile)
{
    const AccurateRipIds ids{1, 2, 3, 4};
    const QByteArray chunk("\x01\x02\0\0\0\x03\0\0\0\x04\0\0\0"
                           "\x07\x78\x56\x34\x12\0\0\0\0",
                           22);
    const QByteArray file = manyTimes(chunk);
    const PeakMemory memory;
    const QList<QList<ArEntry>> tracks = parseDbar(file, ids);
    expectBounded(memory);
    ASSERT_EQ(tracks.size(), 1);
    EXPECT_EQ(tracks[0].size(), answerBytes / chunk.size());
    EXPECT_EQ(tracks[0].last(), (ArEntry{7, 0x12345678, 0}));
}
