#include "verify/AccurateRipDatabase.h"

#include "base/Language.h"
#include "base/Settings.h"
#include "support/FakeHttpTransport.h"
#include "support/LogCapture.h"

#include <QRandomGenerator>
#include <QSettings>

#include <gtest/gtest.h>

#include <new>

namespace {

const AccurateRipIds ids{2, 0x11223344, 0x55667788, 0x0b010a02};

QByteArray little(quint32 value)
{
    QByteArray bytes;
    for (int shift = 0; shift < 32; shift += 8)
        bytes.append(static_cast<char>(value >> shift));
    return bytes;
}

QByteArray entry(quint8 confidence, quint32 crc, quint32 crc450)
{
    return QByteArray(1, static_cast<char>(confidence)) + little(crc) + little(crc450);
}

QByteArray chunk(const QList<QByteArray>& entries, const AccurateRipIds& of = ids)
{
    return QByteArray(1, static_cast<char>(entries.size())) + little(of.discId1) + little(of.discId2)
           + little(of.cddbId) + entries.join();
}

class AccurateRipVerify : public ::testing::Test {
protected:
    AccurateRipVerify()
    {
        speak(2);
        for (const quint32 start : {0u, 10000u}) {
            TrackInfo track;
            track.startLba = start;
            disc.tracks.append(track);
        }
        disc.totalSectors = 20000;
    }

    static void speak(int mode)
    {
        QSettings().setValue(QLatin1String(settings::language), mode);
        loadLanguage();
    }

    void answerWith(int status, const QByteArray& body)
    {
        answer.stage = HttpStage::Answered;
        answer.status = status;
        answer.body = body;
    }

    bool verify() { return accurateRipVerify(disc, tracks, error, &networkError); }

    DiscToc disc;
    HttpAnswer answer; ///< to every request
    FakeHttpTransport transport{[this](const HttpRequest&) { return answer; }};
    HttpTransportOverride override{transport};
    QList<QList<ArEntry>> tracks;
    QString error;
    bool networkError = false;
};

} // namespace

TEST(ParseDbar, EntriesGoToTheirTracksPressingAfterPressing)
{
    const QByteArray body = chunk({entry(5, 0xA1, 0xB1), entry(6, 0xA2, 0xB2)})
                            + chunk({entry(7, 0xA3, 0xB3), entry(8, 0xA4, 0)});
    EXPECT_EQ(parseDbar(body, ids),
              (QList<QList<ArEntry>>{{{5, 0xA1, 0xB1}, {7, 0xA3, 0xB3}}, {{6, 0xA2, 0xB2}, {8, 0xA4, 0}}}));
}

TEST(ParseDbar, ChunksOfOtherPressingsAreSteppedOver)
{
    AccurateRipIds other = ids;
    other.cddbId ^= 1;
    const QByteArray body =
        chunk({entry(1, 1, 1), entry(1, 1, 1)}, other)
        + chunk({entry(1, 1, 1), entry(1, 1, 1), entry(1, 1, 1)}) // the ids, with another track count
        + chunk({entry(9, 2, 2), entry(9, 3, 3)});
    EXPECT_EQ(parseDbar(body, ids), (QList<QList<ArEntry>>{{{9, 2, 2}}, {{9, 3, 3}}}));
}

TEST(ParseDbar, AChunkIsOfTheDiscWhenItsCountAndItsThreeIdsAre)
{
    QList<AccurateRipIds> others(3, ids);
    others[0].discId1 += 1;
    others[1].discId2 += 1;
    others[2].cddbId += 1;
    for (const AccurateRipIds& other : std::as_const(others))
        EXPECT_EQ(parseDbar(chunk({entry(1, 1, 1), entry(1, 1, 1)}, other), ids), QList<QList<ArEntry>>(2));
    EXPECT_EQ(parseDbar(chunk({entry(1, 1, 1)}), ids), QList<QList<ArEntry>>(2));
    EXPECT_EQ(parseDbar(chunk({entry(1, 1, 1), entry(1, 1, 1), entry(1, 1, 1)}), ids),
              QList<QList<ArEntry>>(2));
}

TEST(ParseDbar, AChunkCutOffKeepsWhatWasRead)
{
    QByteArray body = chunk({entry(5, 0xA1, 0xB1), entry(6, 0xA2, 0xB2)});
    body.chop(1);
    EXPECT_EQ(parseDbar(body, ids), (QList<QList<ArEntry>>{{{5, 0xA1, 0xB1}}, {}}));
    EXPECT_EQ(parseDbar(QByteArray(12, 'x'), ids), QList<QList<ArEntry>>(2));
    EXPECT_EQ(parseDbar(QByteArray(), ids), QList<QList<ArEntry>>(2));
}

TEST(ParseDbar, EntriesWithoutAnyChecksumAreDropped)
{
    const QByteArray body = chunk({entry(5, 0, 0), entry(6, 0, 0xB2)});
    EXPECT_EQ(parseDbar(body, ids), (QList<QList<ArEntry>>{{}, {{6, 0, 0xB2}}}));
}

TEST(ParseDbar, NoFileOfAnyShapeIsRefused)
{
    QRandomGenerator random(3);
    const QByteArray valid =
        chunk({entry(5, 1, 2), entry(6, 3, 4)}) + chunk({entry(7, 5, 6), entry(8, 7, 8)});
    for (int round = 0; round < 20000; ++round) {
        QByteArray body = valid.left(random.bounded(static_cast<int>(valid.size()) + 1));
        for (int flips = random.bounded(4); flips > 0 && !body.isEmpty(); --flips)
            body[random.bounded(static_cast<int>(body.size()))] = static_cast<char>(random.generate());
        qsizetype entries = 0;
        const QList<QList<ArEntry>> tracks = parseDbar(body, ids);
        for (const auto& track : tracks)
            entries += track.size();
        EXPECT_EQ(tracks.size(), 2);
        EXPECT_LE(entries * 9, body.size());
    }
}

TEST(AccurateRipMatch, EitherVersionMatchesAndTheLargestConfidenceCounts)
{
    const QList<ArEntry> entries{{3, 0xAA, 0}, {12, 0xBB, 0}, {200, 0xCC, 0}};
    const ArTrackVerdict verdict = accurateRipMatch(0xAA, 0xBB, entries);
    EXPECT_TRUE(verdict.inDatabase);
    EXPECT_TRUE(verdict.matched);
    EXPECT_EQ(verdict.confidence, 12);
    EXPECT_EQ(verdict.crcV1, 0xAAu);
    EXPECT_EQ(verdict.crcV2, 0xBBu);
    EXPECT_EQ(accurateRipMatch(0xCC, 0, entries).confidence, 200);
    EXPECT_EQ(accurateRipMatch(0xAA, 0xBB, {{12, 0xAA, 0}, {3, 0xBB, 0}}).confidence, 12);
}

TEST(AccurateRipMatch, AZeroChecksumNeverMatchesAnything)
{
    const ArTrackVerdict absent = accurateRipMatch(0, 0, {{9, 0, 0xDD}});
    EXPECT_FALSE(absent.inDatabase);
    EXPECT_FALSE(absent.matched);
    const ArTrackVerdict failed = accurateRipMatch(0, 0, {{9, 0, 0xDD}, {9, 1, 0}});
    EXPECT_TRUE(failed.inDatabase);
    EXPECT_FALSE(failed.matched);
    EXPECT_EQ(failed.confidence, 0);
}

TEST(AccurateRipMatch, TheSecondChecksumOfAnEntryIsNotCompared)
{
    EXPECT_FALSE(accurateRipMatch(0xDD, 0xDD, {{9, 1, 0xDD}}).matched);
}

TEST_F(AccurateRipVerify, AsksForTheFileOfTheDisc)
{
    answerWith(200, chunk({entry(5, 1, 2), entry(6, 3, 4)}, computeAccurateRipIds(disc)));
    EXPECT_TRUE(verify());
    ASSERT_EQ(transport.requests().size(), 1);
    EXPECT_FALSE(transport.requests()[0].secure);
    // Disc id 1 is 00007530: its last three digits, from the end.
    EXPECT_EQ(transport.requests()[0].target, "/accuraterip/0/3/5/dBAR-002-00007530-00013881-0b010a02.bin");
    EXPECT_EQ(tracks, (QList<QList<ArEntry>>{{{5, 1, 2}}, {{6, 3, 4}}}));
    EXPECT_TRUE(error.isEmpty());
    EXPECT_FALSE(networkError);
}

TEST_F(AccurateRipVerify, TheLogNamesTheAddressAndTheAnswer)
{
    for (const auto& [status, body] : {std::pair{404, QByteArray()}, {200, QByteArray(12, 'x')}}) {
        answerWith(status, body);
        const LogCapture log;
        EXPECT_FALSE(verify());
        EXPECT_EQ(
            log.debugLines().filter(QStringLiteral("[AccurateRip]")),
            (QStringList{
                QStringLiteral("[AccurateRip] fetch: http://www.accuraterip.com/accuraterip/0/3/5/"
                               "dBAR-002-00007530-00013881-0b010a02.bin"),
                QStringLiteral("[AccurateRip] HTTP status: %1 bytes: %2").arg(status).arg(body.size())}));
    }
}

TEST_F(AccurateRipVerify, NothingOfAnEarlierVerificationIsLeft)
{
    const auto spoil = [this] {
        tracks = {{{5, 1, 2}}, {{6, 3, 4}}, {{7, 5, 6}}};
        error = QStringLiteral("an earlier error");
        networkError = true;
    };
    spoil();
    answerWith(200, chunk({entry(5, 1, 2), entry(6, 3, 4)}, computeAccurateRipIds(disc)));
    EXPECT_TRUE(verify());
    EXPECT_TRUE(error.isEmpty());
    EXPECT_FALSE(networkError);
    for (const int status : {404, 0, 503}) {
        spoil();
        answerWith(status, {});
        EXPECT_FALSE(verify());
        EXPECT_TRUE(tracks.isEmpty()) << status;
        EXPECT_EQ(networkError, status != 404) << status;
    }
    spoil();
    disc.tracks.clear();
    EXPECT_FALSE(verify());
    EXPECT_TRUE(tracks.isEmpty());
    EXPECT_FALSE(networkError);
}

TEST_F(AccurateRipVerify, ADiscWithoutAudioAsksNothing)
{
    for (TrackInfo& track : disc.tracks)
        track.isData = true;
    EXPECT_FALSE(verify());
    EXPECT_TRUE(transport.requests().isEmpty());
    EXPECT_EQ(error, QStringLiteral("There are no audio tracks."));
    EXPECT_FALSE(networkError);
}

TEST_F(AccurateRipVerify, ADiscThatIsNotThereIsNoNetworkError)
{
    const AccurateRipIds own = computeAccurateRipIds(disc);
    const QList<std::pair<int, QByteArray>> answers{{404, {}},
                                                    {200, QByteArray(12, 'x')},
                                                    {200, chunk({entry(1, 1, 1)}, ids)},
                                                    {200, chunk({entry(9, 0, 7), entry(9, 0, 8)}, own)}};
    for (const auto& [status, body] : answers) {
        answerWith(status, body);
        EXPECT_FALSE(verify());
        EXPECT_FALSE(networkError);
        EXPECT_EQ(error, QStringLiteral("This disc (pressing) is not in the AccurateRip database."));
    }
}

TEST_F(AccurateRipVerify, NoAnswerIsANetworkError)
{
    EXPECT_FALSE(verify());
    EXPECT_TRUE(networkError);
    EXPECT_EQ(error, QStringLiteral("Could not connect to the AccurateRip server. "
                                    "Please check your internet connection."));
}

TEST_F(AccurateRipVerify, WantOfMemoryIsANetworkError)
{
    FakeHttpTransport exhausted([](const HttpRequest&) -> HttpAnswer { throw std::bad_alloc(); });
    const HttpTransportOverride inPlace(exhausted);
    tracks = {{{5, 1, 2}}};
    bool found = true;
    EXPECT_NO_THROW(found = verify());
    EXPECT_FALSE(found);
    EXPECT_TRUE(tracks.isEmpty());
    EXPECT_TRUE(networkError);
    EXPECT_EQ(error, QStringLiteral("Could not connect to the AccurateRip server. "
                                    "Please check your internet connection."));
}

TEST_F(AccurateRipVerify, AnotherStatusAndAnEmptyAnswerAreServerErrors)
{
    for (const auto& [status, body] : {std::pair{503, QByteArray("x")}, {200, QByteArray()}}) {
        answerWith(status, body);
        EXPECT_FALSE(verify());
        EXPECT_TRUE(networkError);
        EXPECT_EQ(error, QStringLiteral(
                             "The AccurateRip server returned an error (HTTP %1). Please try again later.")
                             .arg(status));
    }
}

TEST_F(AccurateRipVerify, ErrorsInJapanese)
{
    speak(1);
    EXPECT_FALSE(verify());
    EXPECT_EQ(error,
              QStringLiteral(
                  "AccurateRipのサーバーに接続できませんでした。インターネット接続を確認してください。"));
    answerWith(404, {});
    verify();
    EXPECT_EQ(error, QStringLiteral("このCD（プレス）はAccurateRipデータベースに登録されていません。"));
    answerWith(503, {});
    verify();
    EXPECT_EQ(
        error,
        QStringLiteral(
            "AccurateRipのサーバーからエラーが返りました（HTTP 503）。時間をおいて再度お試しください。"));
    disc.tracks.clear();
    verify();
    EXPECT_EQ(error, QStringLiteral("音声トラックがありません。"));
    speak(2);
}

TEST_F(AccurateRipVerify, TheFlagMayBeLeftOut)
{
    EXPECT_FALSE(accurateRipVerify(disc, tracks, error));
}
