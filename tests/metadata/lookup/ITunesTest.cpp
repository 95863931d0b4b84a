#include "metadata/lookup/ITunes.h"
#include "support/LogCapture.h"
#include "support/ServiceAnswers.h"

#include <gtest/gtest.h>

namespace {

QJsonObject named(const char* name, qint64 id = 1)
{
    ServedAlbum album;
    album.id = id;
    album.name = QString::fromUtf8(name);
    album.artwork = QStringLiteral("https://images.test/%1/100x100bb.jpg").arg(id);
    return itunes::album(album);
}

QString chosen(const QList<QJsonObject>& results, const char* album)
{
    return chooseITunesAlbum(itunes::answer(results), QString::fromUtf8(album)).result.album;
}

} // namespace

TEST(ITunesTerm, BlanksArePlusSignsAndPlusSignsAreEscaped)
{
    EXPECT_EQ(iTunesTerm(QStringLiteral("A B"), QStringLiteral("C+D")), QStringLiteral("A+B+C%2BD"));
    EXPECT_EQ(iTunesTerm(QString(), QString()), QStringLiteral("+"));
    EXPECT_EQ(iTunesTerm(QStringLiteral("雨"), QStringLiteral("%20&=-._~")),
              QStringLiteral("%E9%9B%A8+%2520%26%3D-._~"));
}

TEST(ITunesAlbumChoice, AWholeAlbumIsRead)
{
    const LogCapture log;
    const ITunesAlbum album =
        chooseITunesAlbum(itunes::answer({itunes::album({})}), QStringLiteral("Still Water"));
    EXPECT_EQ(album.result.artist, QStringLiteral("Marsh Choir"));
    EXPECT_EQ(album.result.album, QStringLiteral("Still Water"));
    EXPECT_EQ(album.result.year, QStringLiteral("1998"));
    EXPECT_EQ(album.result.artworkUrl, QStringLiteral("https://images.test/art/600x600bb.jpg"));
    EXPECT_EQ(album.collectionId, 1440831012);
    EXPECT_EQ(log.lines(),
              (QStringList{QStringLiteral("[iTunes] album results: 1"),
                           QStringLiteral("[iTunes] best album: Still Water artist: Marsh Choir year: "
                                          "1998 collectionId: 1440831012")}));
}

TEST(ITunesAlbumChoice, NamesMatchByContainmentBothWaysInAnyCapitals)
{
    EXPECT_EQ(chosen({named("Other"), named("The STILL WATER Sessions")}, "still water"),
              QStringLiteral("The STILL WATER Sessions"));
    EXPECT_EQ(chosen({named("Other"), named("Water")}, "STILL WATERS"), QStringLiteral("Water"));
    EXPECT_EQ(chosen({named("Other"), named("雨の歌 (完全版)")}, "雨の歌"),
              QStringLiteral("雨の歌 (完全版)"));
}

TEST(ITunesAlbumChoice, TheFirstOfSeveralMatchesAndElseTheFirstOfAll)
{
    EXPECT_EQ(chosen({named("X"), named("Water 1"), named("Water 2")}, "water"), QStringLiteral("Water 1"));
    EXPECT_EQ(chosen({named("X"), named("Y")}, "water"), QStringLiteral("X"));
}

TEST(ITunesAlbumChoice, AnEmptyTextMatchesTheFirst)
{
    EXPECT_EQ(chosen({named("X"), named("Y")}, ""), QStringLiteral("X"));
}

TEST(ITunesAlbumChoice, AResultWithoutNameMatchesAnyText)
{
    QJsonObject nameless = named("", 2);
    nameless.remove(QStringLiteral("collectionName"));
    const ITunesAlbum album =
        chooseITunesAlbum(itunes::answer({named("X"), nameless, named("Water")}), QStringLiteral("Water"));
    EXPECT_EQ(album.collectionId, 2);
    EXPECT_TRUE(album.result.album.isEmpty());
}

TEST(ITunesAlbumChoice, MissingKeysAreEmpty)
{
    QJsonObject bare = named("Water");
    for (const char* key : {"collectionId", "artworkUrl100", "releaseDate", "artistName"})
        bare.remove(QString::fromLatin1(key));
    const ITunesAlbum album = chooseITunesAlbum(itunes::answer({bare}), QStringLiteral("Water"));
    EXPECT_EQ(album.collectionId, 0);
    EXPECT_TRUE(album.result.artworkUrl.isEmpty());
    EXPECT_TRUE(album.result.year.isEmpty());
    EXPECT_TRUE(album.result.artist.isEmpty());
    EXPECT_EQ(album.result.album, QStringLiteral("Water"));
}

TEST(ITunesAlbumChoice, AnArtworkAddressOfAnotherSizeStays)
{
    QJsonObject album = named("Water");
    album[QStringLiteral("artworkUrl100")] = QStringLiteral("https://images.test/100x100.jpg");
    EXPECT_EQ(chooseITunesAlbum(itunes::answer({album}), QString()).result.artworkUrl,
              QStringLiteral("https://images.test/100x100.jpg"));
    album[QStringLiteral("artworkUrl100")] = QStringLiteral("100x100bb/100x100bb");
    EXPECT_EQ(chooseITunesAlbum(itunes::answer({album}), QString()).result.artworkUrl,
              QStringLiteral("600x600bb/600x600bb"));
}

TEST(ITunesAlbumChoice, AnIdPastAllNumbersIsNoCrash)
{
    QJsonObject album = named("Water");
    for (const double id : {1e300, -1e300, 0.9, -1.0}) {
        album[QStringLiteral("collectionId")] = id;
        const qint64 read = chooseITunesAlbum(itunes::answer({album}), QString()).collectionId;
        EXPECT_EQ(read >= 1, id >= 1) << id;
    }
}

TEST(ITunesAlbumChoice, WhatIsNoAnswerIsAMiss)
{
    for (const QByteArray& body : {QByteArray("<html>"), QByteArray("[]"), QByteArray("{\"results\":4}"),
                                   QByteArray("{}"), QByteArray(50'000, '[')}) {
        const ITunesAlbum album = chooseITunesAlbum(body, QStringLiteral("x"));
        EXPECT_TRUE(album.result.album.isEmpty());
        EXPECT_EQ(album.collectionId, 0);
        EXPECT_TRUE(chooseITunesArtwork(body, QStringLiteral("x")).isEmpty());
        EXPECT_TRUE(parseITunesSongs(body).isEmpty());
    }
    EXPECT_TRUE(chosen({}, "x").isEmpty());
}

TEST(ITunesArtworkChoice, AResultWithoutArtworkIsPassedOver)
{
    QJsonObject bare = named("Water", 1);
    bare.remove(QStringLiteral("artworkUrl100"));
    const QByteArray body = itunes::answer({named("X", 3), bare, named("Water", 2)});
    EXPECT_EQ(chooseITunesArtwork(body, QStringLiteral("water")),
              QStringLiteral("https://images.test/2/600x600bb.jpg"));
    EXPECT_EQ(chooseITunesAlbum(body, QStringLiteral("water")).collectionId, 1);
}

TEST(ITunesArtworkChoice, WithoutAMatchTheFirstResultsArtworkIsTaken)
{
    EXPECT_EQ(chooseITunesArtwork(itunes::answer({named("X", 7), named("Y", 8)}), QStringLiteral("water")),
              QStringLiteral("https://images.test/7/600x600bb.jpg"));
    QJsonObject bare = named("X", 7);
    bare.remove(QStringLiteral("artworkUrl100"));
    EXPECT_TRUE(
        chooseITunesArtwork(itunes::answer({bare, named("Y", 8)}), QStringLiteral("water")).isEmpty());
}

TEST(ITunesSongs, AscendByNumberAndGapsCloseUp)
{
    const QByteArray body = itunes::songAnswer(
        {}, {{1, 4, QStringLiteral("d")}, {1, 1, QStringLiteral("a")}, {1, 2, QStringLiteral("b")}});
    EXPECT_EQ(parseITunesSongs(body),
              (QStringList{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("d")}));
}

TEST(ITunesSongs, ALaterSongOfTheSameNumberReplacesTheEarlier)
{
    const QByteArray body = itunes::songAnswer(
        {}, {{1, 1, QStringLiteral("a1")}, {1, 2, QStringLiteral("a2")}, {2, 1, QStringLiteral("b1")}});
    EXPECT_EQ(parseITunesSongs(body), (QStringList{QStringLiteral("b1"), QStringLiteral("a2")}));
}

TEST(ITunesSongs, NumberZeroAndEmptyNamesAreLeftOut)
{
    const QByteArray body = itunes::songAnswer({}, {{1, 0, QStringLiteral("zero")},
                                                    {1, 1, QString()},
                                                    {1, -3, QStringLiteral("minus")},
                                                    {1, 2, QStringLiteral("two")}});
    EXPECT_EQ(parseITunesSongs(body), QStringList{QStringLiteral("two")});
}

TEST(ITunesSongs, OtherElementsAreLeftOut)
{
    QJsonObject other = itunes::song({}, {1, 1, QStringLiteral("x")});
    other[QStringLiteral("wrapperType")] = QStringLiteral("Track");
    EXPECT_TRUE(parseITunesSongs(itunes::answer({itunes::album({}), other})).isEmpty());
}
