#include "metadata/lookup/MusicBrainz.h"
#include "support/LogCapture.h"
#include "support/ServiceAnswers.h"

#include <QJsonArray>

#include <gtest/gtest.h>

namespace {

MusicBrainzResult parse(const QJsonObject& release)
{
    return parseMusicBrainzDisc(musicbrainz::discAnswer({release}));
}

ServedRelease twoDiscs()
{
    ServedRelease release;
    release.media = {{1, {QStringLiteral("A1"), QStringLiteral("A2")}}, {2, {QStringLiteral("B1")}}};
    return release;
}

} // namespace

TEST(MusicBrainzAnswer, AWholeReleaseIsRead)
{
    const LogCapture log;
    const MusicBrainzResult result = parse(musicbrainz::release(twoDiscs()));
    EXPECT_EQ(result.title, QStringLiteral("Still Water"));
    EXPECT_EQ(result.artist, QStringLiteral("Marsh Choir"));
    EXPECT_EQ(result.year, QStringLiteral("1998"));
    EXPECT_EQ(result.mbid, QStringLiteral("3d1c4b60-6a6c-4f0e-9d3e-2c63c3a4f6b1"));
    EXPECT_EQ(result.discCount, 2);
    ASSERT_EQ(result.media.size(), 2);
    EXPECT_EQ(result.media[1].position, 2);
    ASSERT_EQ(result.media[1].tracks.size(), 1);
    EXPECT_EQ(result.media[1].tracks[0].disc, 2);
    EXPECT_EQ(result.media[1].tracks[0].title, QStringLiteral("B1"));
    ASSERT_EQ(result.tracks.size(), 2);
    EXPECT_EQ(result.tracks[1].number, 2);
    EXPECT_EQ(result.tracks[1].title, QStringLiteral("A2"));
    EXPECT_EQ(result.tracks[1].disc, 1);
    EXPECT_EQ(log.lines(),
              QStringList{QStringLiteral("[MB] found: Still Water / Marsh Choir mbid= ") + result.mbid});
}

TEST(MusicBrainzAnswer, AFullDateAndAYearAloneGiveTheSameYear)
{
    ServedRelease release;
    release.date = QStringLiteral("2001");
    EXPECT_EQ(parse(musicbrainz::release(release)).year, QStringLiteral("2001"));
    release.date = QStringLiteral("2001-02");
    EXPECT_EQ(parse(musicbrainz::release(release)).year, QStringLiteral("2001"));
    QJsonObject undated = musicbrainz::release(release);
    undated.remove(QStringLiteral("date"));
    EXPECT_TRUE(parse(undated).year.isEmpty());
}

TEST(MusicBrainzAnswer, OfTwoArtistsTheFirstStandsAlone)
{
    ServedRelease release;
    release.artists = {QStringLiteral("First"), QStringLiteral("Second")};
    EXPECT_EQ(parse(musicbrainz::release(release)).artist, QStringLiteral("First"));
}

TEST(MusicBrainzAnswer, WithoutArtistCreditItIsAHitAllTheSame)
{
    QJsonObject release = musicbrainz::release({});
    release.remove(QStringLiteral("artist-credit"));
    EXPECT_TRUE(parse(release).artist.isEmpty());
    EXPECT_EQ(parse(release).title, QStringLiteral("Still Water"));
}

TEST(MusicBrainzAnswer, WithoutAMediumAtPositionOneThereAreNoTracks)
{
    ServedRelease release;
    release.media = {{2, {QStringLiteral("B1")}}, {3, {QStringLiteral("C1")}}};
    const MusicBrainzResult result = parse(musicbrainz::release(release));
    EXPECT_TRUE(result.tracks.isEmpty());
    EXPECT_EQ(result.media.size(), 2);
    EXPECT_EQ(result.discCount, 2);
}

TEST(MusicBrainzAnswer, OfSeveralMediaAtPositionOneTheLastStays)
{
    ServedRelease release;
    release.media = {{1, {QStringLiteral("A1")}}, {1, {QStringLiteral("B1"), QStringLiteral("B2")}}};
    const MusicBrainzResult result = parse(musicbrainz::release(release));
    ASSERT_EQ(result.tracks.size(), 2);
    EXPECT_EQ(result.tracks[0].title, QStringLiteral("B1"));
}

TEST(MusicBrainzAnswer, WithoutMediaTheDiscCountIsZero)
{
    QJsonObject release = musicbrainz::release({});
    EXPECT_EQ(parse(release).discCount, 0);
    release.remove(QStringLiteral("media"));
    EXPECT_EQ(parse(release).discCount, 0);
}

TEST(MusicBrainzAnswer, ATrackNumberWithLettersIsZero)
{
    QJsonObject release = musicbrainz::release(twoDiscs());
    QJsonArray media = release[QStringLiteral("media")].toArray();
    QJsonObject medium = media[0].toObject();
    QJsonArray tracks = medium[QStringLiteral("tracks")].toArray();
    for (qsizetype i = 0; i < 2; ++i) {
        QJsonObject track = tracks[i].toObject();
        track[QStringLiteral("number")] = i == 0 ? QStringLiteral("A1") : QStringLiteral("007");
        tracks[i] = track;
    }
    medium[QStringLiteral("tracks")] = tracks;
    media[0] = medium;
    release[QStringLiteral("media")] = media;
    const MusicBrainzResult result = parse(release);
    ASSERT_EQ(result.tracks.size(), 2);
    EXPECT_EQ(result.tracks[0].number, 0);
    EXPECT_EQ(result.tracks[1].number, 7);
}

TEST(MusicBrainzAnswer, TextsGoThroughUnchanged)
{
    ServedRelease release;
    release.title = QStringLiteral("  ＦＵＬＬ　幅 (feat. x)  ");
    release.artists = {QStringLiteral(" 鈴木\tX ")};
    release.media = {{1, {QStringLiteral(" 一 ")}}};
    const MusicBrainzResult result = parse(musicbrainz::release(release));
    EXPECT_EQ(result.title, release.title);
    EXPECT_EQ(result.artist, release.artists[0]);
    EXPECT_EQ(result.tracks[0].title, QStringLiteral(" 一 "));
}

TEST(MusicBrainzAnswer, AnEmptyBodyIsAMissWithoutAWord)
{
    const LogCapture log;
    EXPECT_TRUE(parseMusicBrainzDisc({}).title.isEmpty());
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST(MusicBrainzAnswer, AnErrorIsNamed)
{
    const LogCapture log;
    EXPECT_TRUE(parseMusicBrainzDisc(musicbrainz::error(QStringLiteral("Not Found"))).title.isEmpty());
    EXPECT_EQ(log.warnings(), QStringList{QStringLiteral("[MB] error: Not Found")});
}

TEST(MusicBrainzAnswer, WhatIsNoJsonHasNoReleases)
{
    for (const QByteArray& body :
         {QByteArray("<html></html>"), QByteArray("["), QByteArray("[]"), QByteArray("42"),
          QByteArray("{\"releases\":{}}"), QByteArray("{\"releases\":[]}"), QByteArray("\0\1\2", 3),
          QByteArray(100'000, '['), QByteArray(100'000, '{')}) {
        const LogCapture log;
        const MusicBrainzResult result = parseMusicBrainzDisc(body);
        EXPECT_TRUE(result.title.isEmpty());
        EXPECT_EQ(result.discCount, 1);
        EXPECT_EQ(log.warnings(), QStringList{QStringLiteral("[MB] no releases found")});
    }
}

TEST(MusicBrainzAnswer, WrongTypesReadAsNothing)
{
    const MusicBrainzResult result = parseMusicBrainzDisc(
        R"({"releases":[{"title":5,"date":[],"id":{},"artist-credit":[7],"media":[3,{"position":"1","tracks":{}},)"
        R"({"position":1.5,"tracks":[null,{"number":4,"title":true}]},{"position":1e300}]}]})");
    EXPECT_TRUE(result.title.isEmpty());
    EXPECT_TRUE(result.artist.isEmpty());
    EXPECT_EQ(result.discCount, 4);
    EXPECT_TRUE(result.tracks.isEmpty());
    for (const MusicBrainzMedium& medium : result.media)
        EXPECT_EQ(medium.position, 0);
    ASSERT_EQ(result.media[2].tracks.size(), 2);
    EXPECT_EQ(result.media[2].tracks[1].number, 0);
    EXPECT_TRUE(result.media[2].tracks[1].title.isEmpty());
}
