#include "metadata/lookup/Xmcd.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

QList<int> numbersOf(const GnuDbResult& result)
{
    QList<int> numbers;
    for (const GnuDbTrack& track : result.tracks)
        numbers.append(track.number);
    return numbers;
}

QStringList titlesOf(const GnuDbResult& result)
{
    QStringList titles;
    for (const GnuDbTrack& track : result.tracks)
        titles.append(track.title);
    return titles;
}

GnuDbResult parse(const char* text)
{
    return parseXmcd(QString::fromUtf8(text));
}

} // namespace

TEST(Xmcd, AWholeRecordIsRead)
{
    const LogCapture log;
    const GnuDbResult result =
        parse("# xmcd\r\n#\r\nDISCID=940b2d0c\r\nDTITLE= Marsh Choir /  Still Water \r\n"
              "DYEAR= 1998 \r\nDGENRE= Folk\r\nTTITLE0= One \r\nTTITLE1=二\r\nEXTD=x\r\n"
              "EXTT0=y\r\nPLAYORDER=\r\n.\r\n");
    EXPECT_EQ(result.artist, QStringLiteral("Marsh Choir"));
    EXPECT_EQ(result.album, QStringLiteral("Still Water"));
    EXPECT_EQ(result.year, QStringLiteral("1998"));
    EXPECT_EQ(result.genre, QStringLiteral("Folk"));
    EXPECT_EQ(titlesOf(result), (QStringList{QStringLiteral("One"), QStringLiteral("二")}));
    EXPECT_EQ(log.lines(),
              QStringList{QStringLiteral("[GnuDB] parsed: Marsh Choir / Still Water year= 1998 tracks= 2")});
}

TEST(Xmcd, ATitleWithoutSeparatorHasNoArtist)
{
    for (const char* title : {"Still Water", "Still/Water", "Still /Water", "Still/ Water"}) {
        const GnuDbResult result = parseXmcd(QStringLiteral("DTITLE=") + QLatin1String(title));
        EXPECT_TRUE(result.artist.isEmpty());
        EXPECT_EQ(result.album, QLatin1String(title));
    }
}

TEST(Xmcd, TheFirstSeparatorDivides)
{
    const GnuDbResult result = parse("DTITLE=A / B / C");
    EXPECT_EQ(result.artist, QStringLiteral("A"));
    EXPECT_EQ(result.album, QStringLiteral("B / C"));
}

TEST(Xmcd, ASecondDiscTitleReplacesTheFirst)
{
    GnuDbResult result = parse("DTITLE=A / B\nDTITLE=C / D");
    EXPECT_EQ(result.artist, QStringLiteral("C"));
    EXPECT_EQ(result.album, QStringLiteral("D"));
    result = parse("DTITLE=A / B\nDTITLE=continued");
    EXPECT_EQ(result.artist, QStringLiteral("A"));
    EXPECT_EQ(result.album, QStringLiteral("continued"));
}

TEST(Xmcd, TwoLinesOfOneKeyJoin)
{
    const GnuDbResult result = parse("TTITLE0=A\nTTITLE0=B");
    EXPECT_EQ(numbersOf(result), QList<int>{1});
    EXPECT_EQ(titlesOf(result), QStringList{QStringLiteral("AB")});
}

TEST(Xmcd, TheBlankAtASeamIsLost)
{
    EXPECT_EQ(titlesOf(parse("TTITLE0=one \r\nTTITLE0= two")), QStringList{QStringLiteral("onetwo")});
}

TEST(Xmcd, TheFirstEqualsSignDivides)
{
    EXPECT_EQ(titlesOf(parse("TTITLE0=a=b")), QStringList{QStringLiteral("a=b")});
}

TEST(Xmcd, KeysThatAreNoNumberAreSkipped)
{
    EXPECT_TRUE(parse("TTITLE=x\nTTITLE\nTTITLEa=x\nTTITLE1a=x\nTTITLE1.5=x\nTTITLE0x1=x\n"
                      "TTITLE99999999999=x\nTITLE1=x\nttitle1=x")
                    .tracks.isEmpty());
}

TEST(Xmcd, KeysAscendAndGapsStay)
{
    const GnuDbResult result = parse("TTITLE5=f\nTTITLE1=b\nTTITLE0=a\nTTITLE10=k");
    EXPECT_EQ(numbersOf(result), (QList<int>{1, 2, 6, 11}));
    EXPECT_EQ(titlesOf(result), (QStringList{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("f"),
                                             QStringLiteral("k")}));
}

TEST(Xmcd, AnEmptyTitleIsATrack)
{
    EXPECT_EQ(numbersOf(parse("TTITLE0=\nTTITLE1=x")), (QList<int>{1, 2}));
}

TEST(Xmcd, TheHighestKeyOfAllIsNoCrash)
{
    EXPECT_EQ(numbersOf(parse("TTITLE2147483647=x")), QList<int>{std::numeric_limits<int>::min()});
    EXPECT_EQ(numbersOf(parse("TTITLE-1=x")), QList<int>{0});
}

TEST(Xmcd, CommentsAreSkippedEvenWhenIndented)
{
    EXPECT_TRUE(parse("#DTITLE=a\n  # DYEAR=1\n\t#TTITLE0=x").tracks.isEmpty());
    EXPECT_TRUE(parse("  #DTITLE=a").album.isEmpty());
    EXPECT_EQ(parse("  DTITLE=a").album, QStringLiteral("a"));
}

TEST(Xmcd, NothingThatIsKnownGivesNothing)
{
    for (const char* text : {"", "\n\n\n", "<html><body>503</body></html>", "DTITLE", "DTITLE:x", "=", "."}) {
        const GnuDbResult result = parse(text);
        EXPECT_TRUE(result.album.isEmpty()) << text;
        EXPECT_TRUE(result.tracks.isEmpty()) << text;
    }
}
