// What is looked up in front of a disc run, over real connections on this machine.

#include "MetadataStage.h"

TEST_F(MetadataStep, AReleaseFillsAllThatIsEmptyWithItsFrontPicture)
{
    const ServedRelease release =
        releaseOf({QStringLiteral("夜"), QStringLiteral("Rain"), QStringLiteral("Sea")});
    answerRelease(release);
    const QByteArray front = "/release/" + release.id.toUtf8() + "/front-500";
    services.on(hosts::coverArtArchive, front, image(picture(50, 40)));
    ASSERT_TRUE(step({}));
    EXPECT_EQ(announced->artist, QStringLiteral("Marsh Choir"));
    EXPECT_EQ(announced->album, QStringLiteral("Still Water"));
    EXPECT_EQ(announced->year, QStringLiteral("1998"));
    EXPECT_EQ(announced->titles,
              (QStringList{QStringLiteral("夜"), QStringLiteral("Rain"), QStringLiteral("Sea")}));
    EXPECT_EQ(announced->cover.size(), QSize(50, 40));
    EXPECT_EQ(announced->lines, QStringList{okLine});
    EXPECT_EQ(order.album, announced->album) << "the order itself is filled";
    EXPECT_EQ(order.disc.tracks[1].title, QStringLiteral("Rain"));
    ASSERT_EQ(services.requests().size(), 2);
    EXPECT_TRUE(services.requests()[0].target.startsWith(discQuery));
    EXPECT_EQ(services.requests()[1].target, front);
    for (const ServedRequest& request : services.requests())
        EXPECT_TRUE(request.secure);
}

TEST_F(MetadataStep, WhatTheUserTypedWins)
{
    answerRelease(releaseOf({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")}));
    services.on(hosts::coverArtArchive, "/", image(picture(50, 40)));
    QPixmap own(7, 5);
    own.fill(Qt::red);
    ASSERT_TRUE(step({QStringLiteral("Me"),
                      QStringLiteral("My own"),
                      QStringLiteral("2001"),
                      {QString(), QStringLiteral("Typed"), QString()},
                      own,
                      QString()}));
    EXPECT_EQ(announced->artist, QStringLiteral("Me"));
    EXPECT_EQ(announced->album, QStringLiteral("My own"));
    EXPECT_EQ(announced->year, QStringLiteral("2001"));
    EXPECT_EQ(announced->titles,
              (QStringList{QStringLiteral("A"), QStringLiteral("Typed"), QStringLiteral("C")}));
    EXPECT_EQ(announced->cover.size(), QSize(7, 5));
    EXPECT_EQ(asked().size(), 1) << "the disc alone, and no picture";
}

TEST_F(MetadataStep, EachFieldIsFilledOnItsOwn)
{
    answerRelease(releaseOf({}));
    const QString own = QStringLiteral("Own");
    for (int typedField = 0; typedField < 3; ++typedField) {
        Typed typed;
        typed.cover = QPixmap(3, 3);
        (typedField == 0 ? typed.artist : typedField == 1 ? typed.album : typed.year) = own;
        ASSERT_TRUE(step(typed));
        EXPECT_EQ(announced->artist, typedField == 0 ? own : QStringLiteral("Marsh Choir"));
        EXPECT_EQ(announced->album, typedField == 1 ? own : QStringLiteral("Still Water"));
        EXPECT_EQ(announced->year, typedField == 2 ? own : QStringLiteral("1998"));
    }
}

TEST_F(MetadataStep, TracksBeyondTheResultKeepTheirEmptyTitles)
{
    answerRelease(releaseOf({QStringLiteral("Only")}));
    ASSERT_TRUE(step({}));
    EXPECT_EQ(announced->titles, (QStringList{QStringLiteral("Only"), QString(), QString()}));
}

TEST_F(MetadataStep, TitlesBeyondTheDiscAreLeftAlone)
{
    answerRelease(
        releaseOf({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C"), QStringLiteral("D")}));
    ASSERT_TRUE(step({}));
    EXPECT_EQ(announced->titles,
              (QStringList{QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")}));
}

TEST_F(MetadataStep, GnuDbServesAnAlbumThatIsStillUnknown)
{
    answerGnuDb();
    ASSERT_TRUE(step({QString(), QString(), QStringLiteral("2001"), {}, {}, QString()}));
    EXPECT_EQ(announced->artist, QStringLiteral("Reed Choir"));
    EXPECT_EQ(announced->album, QStringLiteral("Low Tide"));
    EXPECT_EQ(announced->year, QStringLiteral("2001"));
    EXPECT_EQ(announced->titles,
              (QStringList{QStringLiteral("One"), QStringLiteral("Two"), QStringLiteral("Three")}));
    EXPECT_EQ(announced->lines,
              (QStringList{gnudbLine, QStringLiteral("[RipWorker] GnuDB OK: Low Tide"), coverLine}));
}

TEST_F(MetadataStep, GnuDbIsNotAskedForAnAlbumThatHasAName)
{
    answerGnuDb();
    ASSERT_TRUE(step({QString(), QStringLiteral("Unknown"), QString(), {}, {}, QString()}));
    EXPECT_TRUE(services.targets(hosts::gnuDb).isEmpty());
    EXPECT_TRUE(announced->artist.isEmpty());
    EXPECT_EQ(announced->titles, QStringList(3, QString()));
    EXPECT_EQ(announced->lines, QStringList{coverLine});
}

TEST_F(MetadataStep, ACoverIsSoughtByNameWhenTheReleaseHasNone)
{
    answerRelease(releaseOf({}));
    services.on(hosts::musicBrainz, textQuery, json(musicbrainz::searchAnswer({QStringLiteral("other-id")})));
    services.on(hosts::coverArtArchive, "/release/other-id/front-500", image(picture(20, 10)));
    ASSERT_TRUE(step({}));
    EXPECT_EQ(announced->cover.size(), QSize(20, 10));
    EXPECT_EQ(announced->lines, (QStringList{okLine, coverLine}));
    EXPECT_EQ(services.targets(hosts::coverArtArchive).size(), 2)
        << "by the release's id, then by the found one";
}

TEST_F(MetadataStep, AnUnreadablePictureIsNone)
{
    answerRelease(releaseOf({}));
    services.on(hosts::coverArtArchive, "/", image("this is no picture"));
    answerITunes(60);
    ASSERT_TRUE(step({}));
    EXPECT_EQ(announced->cover.size(), QSize(60, 60));
}

TEST_F(MetadataStep, AReleaseWithoutAnIdIsNotSoughtInTheArchive)
{
    ServedRelease release = releaseOf({});
    release.id.clear();
    answerRelease(release);
    ASSERT_TRUE(step({}));
    EXPECT_TRUE(services.targets(hosts::coverArtArchive).isEmpty());
    EXPECT_TRUE(announced->cover.isNull());
}

TEST_F(MetadataStep, TheTokenOpensDiscogsInFrontOfITunes)
{
    services.on(hosts::discogs, "/database/search",
                json(discogs::searchAnswer(QStringLiteral("https://images.test/front.jpg"), QString())));
    services.on(hosts::images, "/front.jpg", image(picture(33, 22)));
    answerITunes(60);
    const Typed named{QStringLiteral("Ada"), QStringLiteral("Blue"), QString(), {}, {}, QString()};
    ASSERT_TRUE(step(named));
    EXPECT_EQ(announced->cover.size(), QSize(60, 60));
    EXPECT_TRUE(services.targets(hosts::discogs).isEmpty());

    Typed withToken = named;
    withToken.discogsToken = QStringLiteral("tok3n");
    ASSERT_TRUE(step(withToken));
    EXPECT_EQ(announced->cover.size(), QSize(33, 22));
    ASSERT_EQ(services.targets(hosts::discogs).size(), 1);
    EXPECT_EQ(services.targets(hosts::discogs)[0],
              "/database/search?q=Ada%20Blue&type=release&per_page=5&token=tok3n");
}
