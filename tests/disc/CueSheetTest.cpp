#include "disc/CueSheet.h"

#include <gtest/gtest.h>

namespace {

CueSheet scan(const char* text)
{
    return scanCueSheet(QString::fromUtf8(text), QStringLiteral("/music"));
}

constexpr char plainSheet[] = "PERFORMER \"The Band\"\n"
                              "TITLE \"The Album\"\n"
                              "REM DATE 1999\n"
                              "FILE \"a b.bin\" BINARY\n"
                              "  TRACK 01 AUDIO\n"
                              "    TITLE \"One\"\n"
                              "    INDEX 01 00:00:00\n"
                              "  TRACK 02 AUDIO\n"
                              "    TITLE \"Two\"\n"
                              "    INDEX 00 03:00:00\n"
                              "    INDEX 01 03:02:05\n";

} // namespace

TEST(CueSheet, KeywordsFillAlbumAndTracks)
{
    const CueSheet sheet = scan(plainSheet);
    EXPECT_EQ(sheet.albumArtist, QStringLiteral("The Band"));
    EXPECT_EQ(sheet.albumTitle, QStringLiteral("The Album"));
    EXPECT_EQ(sheet.albumYear, QStringLiteral("1999"));
    ASSERT_EQ(sheet.entries.size(), 2);
    EXPECT_EQ(sheet.entries[0].file, QStringLiteral("/music/a b.bin"));
    EXPECT_FALSE(sheet.entries[0].isWave);
    EXPECT_EQ(sheet.entries[1].number, 2);
    EXPECT_EQ(sheet.entries[1].title, QStringLiteral("Two"));
    EXPECT_EQ(sheet.entries[1].index01, static_cast<quint32>((3 * 60 + 2) * 75 + 5));
}

TEST(CueSheet, CarriageReturnsChangeNothing)
{
    const CueSheet unixSheet = scan(plainSheet);
    const CueSheet dosSheet =
        scanCueSheet(QString::fromUtf8(plainSheet).replace(QLatin1Char('\n'), QStringLiteral("\r\n")),
                     QStringLiteral("/music"));
    ASSERT_EQ(dosSheet.entries.size(), unixSheet.entries.size());
    EXPECT_EQ(dosSheet.albumArtist, unixSheet.albumArtist);
    EXPECT_EQ(dosSheet.entries[0].file, unixSheet.entries[0].file);
    EXPECT_EQ(dosSheet.entries[1].index01, unixSheet.entries[1].index01);
    EXPECT_EQ(dosSheet.entries[1].title, unixSheet.entries[1].title);
}

TEST(CueSheet, LowerCaseKeywordsAreTaken)
{
    const CueSheet sheet = scan("file \"x.bin\" binary\ntrack 5 audio\nindex 01 00:01:00\n");
    ASSERT_EQ(sheet.entries.size(), 1);
    EXPECT_EQ(sheet.entries[0].number, 5);
    EXPECT_EQ(sheet.entries[0].index01, 75U);
}

TEST(CueSheet, IndexWithTwoBlanksIsSkipped)
{
    const CueSheet sheet = scan("TRACK 01 AUDIO\nINDEX  01 00:01:00\n");
    EXPECT_EQ(sheet.entries[0].index01, 0U);
}

TEST(CueSheet, ASecondIndexOverwritesTheFirst)
{
    const CueSheet sheet = scan("TRACK 01 AUDIO\nINDEX 01 00:01:00\nINDEX 01 00:02:00\n");
    EXPECT_EQ(sheet.entries[0].index01, 150U);
}

TEST(CueSheet, IndexWithoutThreePartsIsSkipped)
{
    for (const char* time : {"", "00:01", "00:01:00:00", "garbage"}) {
        const CueSheet sheet =
            scan((std::string("TRACK 01 AUDIO\nINDEX 01 00:03:00\nINDEX 01 ") + time + "\n").c_str());
        EXPECT_EQ(sheet.entries[0].index01, 225U) << time;
    }
}

TEST(CueSheet, WaveAnywhereInTheFileLineCounts)
{
    EXPECT_TRUE(scan("FILE \"shockwave.bin\" BINARY\nTRACK 01 AUDIO\n").entries[0].isWave);
    EXPECT_TRUE(scan("FILE \"x.wav\" Wave\nTRACK 01 AUDIO\n").entries[0].isWave);
    EXPECT_FALSE(scan("FILE \"x.wav\" BINARY\nTRACK 01 AUDIO\n").entries[0].isWave);
}

TEST(CueSheet, ALaterFileLineClearsTheType)
{
    const CueSheet sheet =
        scan("FILE \"a.wav\" WAVE\nTRACK 01 AUDIO\nFILE \"b.bin\" BINARY\nTRACK 02 AUDIO\n");
    EXPECT_TRUE(sheet.entries[0].isWave);
    EXPECT_FALSE(sheet.entries[1].isWave);
    EXPECT_EQ(sheet.entries[1].file, QStringLiteral("/music/b.bin"));
}

TEST(CueSheet, ValueWithoutQuotesIsEmpty)
{
    EXPECT_EQ(scan("PERFORMER \"Someone\"\nPERFORMER Nobody\n").albumArtist, QString());
    EXPECT_EQ(scan("TITLE \"half\nTITLE \"\n").albumTitle, QString());
}

TEST(CueSheet, ValueReachesFromTheFirstToTheLastQuote)
{
    EXPECT_EQ(scan("TITLE \"The \"Best\" Of\"\n").albumTitle, QStringLiteral("The \"Best\" Of"));
}

TEST(CueSheet, PerformerOfATrackOverwritesTheAlbums)
{
    EXPECT_EQ(scan("PERFORMER \"A\"\nTRACK 01 AUDIO\nPERFORMER \"B\"\n").albumArtist, QStringLiteral("B"));
}

TEST(CueSheet, DateIsTheLastPartWithoutQuotes)
{
    EXPECT_EQ(scan("REM DATE \"2001-05-12\"\n").albumYear, QStringLiteral("2001-05-12"));
    EXPECT_EQ(scan("REM DATE about 1970\n").albumYear, QStringLiteral("1970"));
    EXPECT_EQ(scan("REM DATE\n").albumYear, QStringLiteral("DATE"));
}

TEST(CueSheet, TrackNumberThatIsNoneIsZero)
{
    EXPECT_EQ(scan("TRACK\nTRACK xx AUDIO\n").entries[0].number, 0);
    EXPECT_EQ(scan("TRACK\nTRACK xx AUDIO\n").entries[1].number, 0);
}

TEST(CueSheet, AbsurdTimesWrapWithoutHarm)
{
    const CueSheet sheet = scan("TRACK 01 AUDIO\nINDEX 01 2147483647:99:99\n");
    const quint32 expected = (2147483647U * 60U + 99U) * 75U + 99U;
    EXPECT_EQ(sheet.entries[0].index01, expected);
}

TEST(CueText, MarksDecideTheEncoding)
{
    EXPECT_EQ(decodeCueText("\xEF\xBB\xBF\xE6\x97\xA5"), QStringLiteral("日"));
    EXPECT_EQ(decodeCueText(QByteArray("\xFF\xFE\xE5\x65\x00\x00\x41\x00", 8)), QStringLiteral("日"));
    EXPECT_EQ(decodeCueText("\xE6\x97\xA5"), QStringLiteral("日"));
    EXPECT_EQ(decodeCueText(QByteArray("\xFF\xFE\x41", 3)), QString()) << "half a character";
}

TEST(CueText, WhatIsNotUtf8IsDecodedByTheLocalCodePage)
{
    const QString text = decodeCueText("TITLE \"\xe9t\xe9\"");
    EXPECT_FALSE(text.isEmpty());
    EXPECT_NE(text, QString::fromUtf8("TITLE \"\xe9t\xe9\""));
}
