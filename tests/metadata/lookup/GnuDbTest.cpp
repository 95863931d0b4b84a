#include "metadata/lookup/GnuDb.h"
#include "DiscTables.h"
#include "support/LogCapture.h"
#include "support/LoopbackServices.h"
#include "support/ServiceAnswers.h"

#include <gtest/gtest.h>

namespace {

const QByteArray tail = "&hello=user+localhost+TarvelCDRipper+1.0&proto=6";
const QByteArray queryStart = "/~cddb/cddb.cgi?cmd=cddb+query+";

// Tracks at 2, 12 and 123 seconds, lead-out at 345: digit sums 2 + 3 + 6.
DiscToc threeTracks()
{
    return discOf({2 * 75 + 74, 12 * 75, 123 * 75 + 1}, 345 * 75 + 10);
}

QByteArray readTarget(const QByteArray& category, const QByteArray& id)
{
    return "/~cddb/cddb.cgi?cmd=cddb+read+" + category + "+" + id + tail;
}

QStringList titles(int count, const QString& stem = QStringLiteral("Title"))
{
    QStringList list;
    for (int i = 1; i <= count; ++i)
        list.append(stem + QString::number(i));
    return list;
}

ServedRecord record(const char* id, int titleCount)
{
    ServedRecord made;
    made.discId = QString::fromLatin1(id);
    made.discTitle = QStringLiteral("Choir / Album ") + made.discId;
    made.titles = titles(titleCount, made.discId + QStringLiteral("-"));
    return made;
}

// A list of candidates, each readable.
void play(LoopbackServices& services, int code, const QList<ServedRecord>& records)
{
    services.on(hosts::gnuDb, queryStart, page(gnudb::matchList(code, records)));
    for (const ServedRecord& one : records)
        services.on(hosts::gnuDb, readTarget(one.category.toUtf8(), one.discId.toUtf8()),
                    page(gnudb::recordAnswer(one)));
}

} // namespace

TEST(GnuDbLookup, AsksWithTheIdTheSectorsAndTheSeconds)
{
    LoopbackServices services;
    services.on(hosts::gnuDb, "/", page(gnudb::noMatch()));
    const LogCapture log;
    gnudbLookup(threeTracks());
    // (2 + 3 + 6) << 24 | 345 << 8 | 3
    EXPECT_EQ(services.targets(hosts::gnuDb),
              QList<QByteArray>{queryStart + "0b015903+3+224+900+9226+345" + tail});
    EXPECT_FALSE(services.requests().first().secure);
    EXPECT_EQ(log.debugLines(),
              (QStringList{QStringLiteral("[GnuDB] DiscID: 0b015903 tracks: 3 secs: 345"),
                           QStringLiteral("[GnuDB] query URL: http://gnudb.gnudb.org")
                               + QString::fromLatin1(queryStart + "0b015903+3+224+900+9226+345" + tail),
                           QStringLiteral("[GnuDB] query response: 202 No match found\r\n")}));
    EXPECT_EQ(log.warnings(), QStringList{QStringLiteral("[GnuDB] no match (code= 202 )")});
}

TEST(GnuDbLookup, TheDigitSumIsTakenModulo255)
{
    LoopbackServices services;
    // 28 for each of nine tracks at 1999 seconds, and 5 for the one at 2003.
    DiscToc disc = discOf(QList<quint32>(9, 1999 * 75), 3000 * 75);
    disc.tracks.append(discOf({2003 * 75}, 3000 * 75).tracks);
    gnudbLookup(disc);
    ASSERT_EQ(services.requests().size(), 1);
    // (9 * 28 + 5) modulo 255 = 2; 3000 = 0xbb8; ten tracks
    EXPECT_TRUE(services.requests().first().target.startsWith(queryStart + "020bb80a+10+"));
}

TEST(GnuDbLookup, NoTracksAskNobody)
{
    LoopbackServices services;
    const LogCapture log;
    EXPECT_TRUE(gnudbLookup(DiscToc()).album.isEmpty());
    EXPECT_TRUE(services.requests().isEmpty());
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST(GnuDbLookup, AnExactMatchIsRead)
{
    LoopbackServices services;
    ServedRecord found = record("0b015903", 3);
    found.titles[0] = QStringLiteral("雨の歌");
    services.on(hosts::gnuDb, queryStart, page(gnudb::exactMatch(found)));
    services.on(hosts::gnuDb, readTarget("rock", "0b015903"), page(gnudb::recordAnswer(found)));
    const LogCapture log;
    const GnuDbResult result = gnudbLookup(threeTracks());
    EXPECT_EQ(result.artist, QStringLiteral("Choir"));
    EXPECT_EQ(result.album, QStringLiteral("Album 0b015903"));
    EXPECT_EQ(result.year, QStringLiteral("1998"));
    EXPECT_EQ(result.genre, QStringLiteral("Folk"));
    ASSERT_EQ(result.tracks.size(), 3);
    EXPECT_EQ(result.tracks[0].title, QStringLiteral("雨の歌"));
    EXPECT_EQ(result.tracks[2].number, 3);
    EXPECT_TRUE(log.warnings().isEmpty());
    EXPECT_TRUE(log.debugLines().contains(QStringLiteral("[GnuDB] found: category= rock discid= 0b015903")));
    EXPECT_TRUE(log.debugLines().contains(QStringLiteral("[GnuDB] read URL: http://gnudb.gnudb.org")
                                          + QString::fromLatin1(readTarget("rock", "0b015903"))));
}

TEST(GnuDbLookup, Code200WithTwoWordsIsNothing)
{
    LoopbackServices services;
    services.on(hosts::gnuDb, "/", page("200 rock\r\n"));
    const LogCapture log;
    EXPECT_TRUE(gnudbLookup(threeTracks()).album.isEmpty());
    EXPECT_EQ(services.requests().size(), 1);
    EXPECT_TRUE(log.warnings().isEmpty());
}

TEST(GnuDbLookup, EmptyWordsCountAsWords)
{
    LoopbackServices services;
    services.on(hosts::gnuDb, "/", page("200  940b2d0c\r\n"));
    EXPECT_TRUE(gnudbLookup(threeTracks()).album.isEmpty());
    EXPECT_EQ(services.requests().size(), 1);
}

TEST(GnuDbLookup, NoCandidateLineIsNothing)
{
    for (const char* answer : {"210 Found\r\n.\r\n", "211 Found\r\n", "210 Found\r\nalone\r\n.\r\n"}) {
        LoopbackServices services;
        services.on(hosts::gnuDb, "/", page(answer));
        const LogCapture log;
        EXPECT_TRUE(gnudbLookup(threeTracks()).album.isEmpty());
        EXPECT_EQ(services.requests().size(), 1);
        EXPECT_EQ(log.debugLines().last(), QStringLiteral("[GnuDB] candidates: 0"));
        EXPECT_TRUE(log.warnings().isEmpty());
    }
}

TEST(GnuDbLookup, AListThatIsNotClosedEndsWithTheLastLine)
{
    LoopbackServices services;
    const ServedRecord found = record("aa015903", 3);
    play(services, 210, {found});
    services.on(hosts::gnuDb, queryStart, page("210 Found\r\nrock aa015903 Choir / Album"));
    EXPECT_EQ(gnudbLookup(threeTracks()).album, QStringLiteral("Album aa015903"));
}

TEST(GnuDbLookup, WhatStandsBehindTheClosingPointIsNoCandidate)
{
    for (const char* point : {".\r\n", ".\n", " . \n"}) {
        LoopbackServices services;
        play(services, 210, {record("aa000001", 2), record("aa000002", 3)});
        services.on(hosts::gnuDb, queryStart,
                    page(QByteArray("210 Found\r\nrock aa000001 x\r\n") + point + "rock aa000002 x\r\n"));
        const LogCapture log;
        EXPECT_EQ(gnudbLookup(threeTracks()).album, QStringLiteral("Album aa000001"));
        EXPECT_TRUE(log.debugLines().contains(QStringLiteral("[GnuDB] candidates: 1")));
    }
}

TEST(GnuDbLookup, BlanksAroundALineCountForNothing)
{
    const ServedRecord found = record("aa000001", 3);
    for (const char* answer :
         {"200 rock aa000001\r\n", " \t 200 rock aa000001 x\n", "210 Found\n  rock aa000001\r\n.\r\n"}) {
        LoopbackServices services;
        play(services, 210, {found});
        services.on(hosts::gnuDb, queryStart, page(answer));
        services.on(hosts::gnuDb, readTarget("rock", "aa000001"),
                    page(gnudb::recordAnswer(found).replace("TTITLE", "\t TTITLE")));
        const LogCapture log;
        EXPECT_EQ(gnudbLookup(threeTracks()).tracks.size(), 3) << answer;
        EXPECT_EQ(services.targets(hosts::gnuDb).value(1), readTarget("rock", "aa000001")) << answer;
        EXPECT_EQ(services.requests().size(), 2) << answer;
    }
}

TEST(GnuDbLookup, TheStatusLineIsNoPartOfARecord)
{
    for (const int code : {200, 210}) {
        LoopbackServices services;
        const ServedRecord found = record("aa000001", 2);
        play(services, code, {found});
        if (code == 200)
            services.on(hosts::gnuDb, queryStart, page(gnudb::exactMatch(found)));
        services.on(
            hosts::gnuDb, readTarget("rock", "aa000001"),
            page("TTITLE2=of the status line\r\n" + gnudb::recordAnswer(found).replace("210 rock", "#")));
        EXPECT_EQ(gnudbLookup(threeTracks()).tracks.size(), 2) << code;
    }
}

TEST(GnuDbLookup, TheFirstCandidateWithTheRightCountWins)
{
    for (const int code : {210, 211}) {
        LoopbackServices services;
        play(services, code, {record("aa000001", 2), record("aa000002", 3), record("aa000003", 3)});
        const LogCapture log;
        EXPECT_EQ(gnudbLookup(threeTracks()).album, QStringLiteral("Album aa000002"));
        EXPECT_EQ(services.targets(hosts::gnuDb).mid(1),
                  (QList<QByteArray>{readTarget("rock", "aa000001"), readTarget("rock", "aa000002")}));
        const QStringList lines = log.debugLines();
        EXPECT_TRUE(lines.contains(QStringLiteral("[GnuDB] candidates: 3")));
        EXPECT_TRUE(lines.contains(QStringLiteral("[GnuDB] candidate rock aa000001 tracks= 2 (need 3 )")));
        EXPECT_TRUE(lines.contains(QStringLiteral("[GnuDB] candidate rock aa000002 tracks= 3 (need 3 )")));
        EXPECT_TRUE(lines.contains(QStringLiteral("[GnuDB] track count matched!")));
    }
}

TEST(GnuDbLookup, WithoutTheRightCountTheFirstIsReadAgain)
{
    LoopbackServices services;
    play(services, 211, {record("aa000001", 2), record("aa000002", 4)});
    const LogCapture log;
    const GnuDbResult result = gnudbLookup(threeTracks());
    EXPECT_EQ(result.album, QStringLiteral("Album aa000001"));
    EXPECT_EQ(result.tracks.size(), 2);
    EXPECT_EQ(services.targets(hosts::gnuDb).mid(1),
              (QList<QByteArray>{readTarget("rock", "aa000001"), readTarget("rock", "aa000002"),
                                 readTarget("rock", "aa000001")}));
    EXPECT_TRUE(
        log.debugLines().contains(QStringLiteral("[GnuDB] no track count match, using first candidate")));
}

TEST(GnuDbLookup, ACandidateThatCannotBeReadIsPassedOver)
{
    LoopbackServices services;
    play(services, 210, {record("aa000001", 3), record("aa000002", 3)});
    services.on(hosts::gnuDb, readTarget("rock", "aa000001"), errorPage(503));
    EXPECT_EQ(gnudbLookup(threeTracks()).album, QStringLiteral("Album aa000002"));
}

TEST(GnuDbLookup, NoCandidateReadableEndsInAWarning)
{
    LoopbackServices services;
    services.on(hosts::gnuDb, queryStart, page(gnudb::matchList(210, {record("aa000001", 3)})));
    const LogCapture log;
    EXPECT_TRUE(gnudbLookup(threeTracks()).album.isEmpty());
    EXPECT_EQ(services.requests().size(), 3);
    EXPECT_EQ(log.warnings(), QStringList{QStringLiteral("[GnuDB] read request failed")});
}

TEST(GnuDbLookup, ATitleLineWithoutKeyCountsButIsNoTrack)
{
    LoopbackServices services;
    const ServedRecord found = record("aa000001", 2);
    play(services, 210, {found});
    services.on(hosts::gnuDb, readTarget("rock", "aa000001"),
                page(gnudb::recordAnswer(found).replace("EXTD=", "TTITLE=keyless\r\nEXTD=")));
    const LogCapture log;
    EXPECT_EQ(gnudbLookup(threeTracks()).tracks.size(), 2);
    EXPECT_EQ(services.requests().size(), 2);
    EXPECT_TRUE(log.debugLines().contains(QStringLiteral("[GnuDB] track count matched!")));
}

TEST(GnuDbLookup, ADataTrackCountsInTheNeedAndInTheQuery)
{
    LoopbackServices services;
    DiscToc disc = threeTracks();
    disc.tracks[2].isData = true;
    play(services, 210, {record("aa000001", 2), record("aa000002", 3)});
    EXPECT_EQ(gnudbLookup(disc).album, QStringLiteral("Album aa000002"));
    EXPECT_EQ(services.targets(hosts::gnuDb).first(), queryStart + "0b015903+3+224+900+9226+345" + tail);
}

TEST(GnuDbLookup, FailuresAreWarnings)
{
    const QString queryFailed = QStringLiteral("[GnuDB] query request failed");
    ServedAnswer drops;
    drops.dropped = true;
    const QList<std::pair<ServedAnswer, QString>> cases{
        {errorPage(404), queryFailed},
        {errorPage(503), queryFailed},
        {page({}), queryFailed},
        {drops, queryFailed},
        {page("<html>down</html>"), QStringLiteral("[GnuDB] no match (code= 0 )")},
        {page("403 Database entry is corrupt\r\n"), QStringLiteral("[GnuDB] no match (code= 403 )")},
        {page("\r\n"), QStringLiteral("[GnuDB] no match (code= 0 )")},
    };
    for (const auto& [answer, warning] : cases) {
        LoopbackServices services;
        services.on(hosts::gnuDb, "/", answer);
        const LogCapture log;
        EXPECT_TRUE(gnudbLookup(threeTracks()).album.isEmpty());
        EXPECT_EQ(log.warnings(), QStringList{warning});
    }
}

TEST(GnuDbLookup, LogsTwoHundredCharactersOfTheAnswer)
{
    LoopbackServices services;
    const QString text = QStringLiteral("500 ") + QString(196, u'語');
    services.on(hosts::gnuDb, "/", page((text + u'x').toUtf8()));
    const LogCapture log;
    gnudbLookup(threeTracks());
    EXPECT_EQ(log.debugLines().last(), QStringLiteral("[GnuDB] query response: ") + text);
}

TEST(GnuDbLookup, ACategoryCannotBreakOutOfTheRequestLine)
{
    LoopbackServices services;
    services.on(hosts::gnuDb, queryStart, page("200 a\tb\x01#c d\"e x\n"));
    gnudbLookup(threeTracks());
    const QList<QByteArray> targets = services.targets(hosts::gnuDb);
    ASSERT_EQ(targets.size(), 2);
    for (const char byte : targets[1])
        EXPECT_TRUE(byte > ' ' && byte < 127);
}

TEST(GnuDbRead, IsTheBodyAsItCame)
{
    LoopbackServices services;
    services.on(hosts::gnuDb, readTarget("jazz", "12345678"), page("210 jazz\r\n\xFF\xFE"));
    EXPECT_EQ(gnudbRead(QStringLiteral("jazz"), QStringLiteral("12345678")), "210 jazz\r\n\xFF\xFE");
    EXPECT_TRUE(gnudbRead(QStringLiteral("jazz"), QStringLiteral("87654321")).isEmpty());
}
