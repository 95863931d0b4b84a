#include "metadata/lookup/CoverArt.h"
#include "support/LogCapture.h"
#include "support/LoopbackServices.h"
#include "support/ServiceAnswers.h"

#include <gtest/gtest.h>

namespace {

const QString artist = QStringLiteral("Marsh Choir");
const QString album = QStringLiteral("Still Water");
const QByteArray searchTarget =
    "/search?term=Marsh+Choir+Still+Water&entity=album&limit=10&country=JP&lang=ja_jp";
const QByteArray lookupTarget = "/lookup?id=1440831012&entity=song&country=JP&lang=ja_jp";

} // namespace

TEST(ITunesLookup, AsksForTheAlbumAndThenForItsSongs)
{
    LoopbackServices services;
    services.on(hosts::iTunes, "/search", json(itunes::answer({itunes::album({})})));
    services.on(
        hosts::iTunes, "/lookup",
        json(itunes::songAnswer({}, {{1, 1, QStringLiteral("雨")}, {1, 2, QStringLiteral("Reeds")}})));
    const LogCapture log;
    const ITunesResult result = CoverArt::lookupITunes(artist, album);
    EXPECT_EQ(result.album, album);
    EXPECT_EQ(result.artist, artist);
    EXPECT_EQ(result.tracks, (QStringList{QStringLiteral("雨"), QStringLiteral("Reeds")}));
    EXPECT_EQ(services.targets(hosts::iTunes), (QList<QByteArray>{searchTarget, lookupTarget}));
    EXPECT_TRUE(services.requests()[0].secure && services.requests()[1].secure);
    const QString host = QStringLiteral("https://itunes.apple.com");
    EXPECT_EQ(
        log.lines(),
        (QStringList{QStringLiteral("[iTunes] album search: ") + host + QString::fromLatin1(searchTarget),
                     QStringLiteral("[iTunes] album results: 1"),
                     QStringLiteral("[iTunes] best album: Still Water artist: Marsh Choir year: 1998 "
                                    "collectionId: 1440831012"),
                     QStringLiteral("[iTunes] track lookup: ") + host + QString::fromLatin1(lookupTarget),
                     QStringLiteral("[iTunes] tracks: 2")}));
}

TEST(ITunesLookup, TheTermArrivesAsItWasEncoded)
{
    LoopbackServices services;
    CoverArt::lookupITunes(QStringLiteral("A&B"), QStringLiteral("1+1=2% 雨?#"));
    ASSERT_EQ(services.requests().size(), 1);
    EXPECT_EQ(services.requests().first().target,
              "/search?term=A%26B+1%2B1%3D2%25+%E9%9B%A8%3F%23&entity=album&limit=10&country=JP&lang=ja_jp");
}

TEST(ITunesLookup, WithoutAnIdNoSongsAreAskedFor)
{
    LoopbackServices services;
    QJsonObject bare = itunes::album({});
    bare.remove(QStringLiteral("collectionId"));
    services.on(hosts::iTunes, "/search", json(itunes::answer({bare})));
    const ITunesResult result = CoverArt::lookupITunes(artist, album);
    EXPECT_EQ(result.album, album);
    EXPECT_TRUE(result.tracks.isEmpty());
    EXPECT_EQ(services.requests().size(), 1);
}

TEST(ITunesLookup, AFailedSongRequestLeavesTheAlbum)
{
    ServedAnswer drops;
    drops.dropped = true;
    for (const ServedAnswer& second : {drops, json({}), errorPage(503)}) {
        LoopbackServices services;
        services.on(hosts::iTunes, "/search", json(itunes::answer({itunes::album({})})));
        services.on(hosts::iTunes, "/lookup", second);
        const LogCapture log;
        const ITunesResult result = CoverArt::lookupITunes(artist, album);
        EXPECT_EQ(result.album, album);
        EXPECT_TRUE(result.tracks.isEmpty());
        EXPECT_TRUE(log.warnings().isEmpty());
    }
}

TEST(ITunesLookup, AnEmptyAnswerIsAWarningAndAnErrorPageIsNot)
{
    ServedAnswer drops;
    drops.dropped = true;
    for (const ServedAnswer& answer : {drops, json({})}) {
        LoopbackServices services;
        services.on(hosts::iTunes, "/", answer);
        const LogCapture log;
        EXPECT_TRUE(CoverArt::lookupITunes(artist, album).album.isEmpty());
        EXPECT_EQ(log.warnings(), QStringList{QStringLiteral("[iTunes] album search failed")});
    }
    for (const ServedAnswer& answer : {errorPage(403), errorPage(503), json(itunes::answer({}))}) {
        LoopbackServices services;
        services.on(hosts::iTunes, "/", answer);
        const LogCapture log;
        EXPECT_TRUE(CoverArt::lookupITunes(artist, album).album.isEmpty());
        EXPECT_TRUE(log.warnings().isEmpty());
        EXPECT_EQ(log.debugLines().last(), QStringLiteral("[iTunes] album results: 0"));
        EXPECT_EQ(services.requests().size(), 1);
    }
}
