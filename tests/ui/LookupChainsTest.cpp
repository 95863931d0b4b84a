// The lookup chains as functions, without a window.

#include "ui/LookupChains.h"

#include "metadata/lookup/DiscTables.h"
#include "support/FakeHttpTransport.h"
#include "support/LogCapture.h"
#include "support/LoopbackServices.h"
#include "support/ServiceAnswers.h"

#include <gtest/gtest.h>

#include <new>

namespace {

const QString fallbackLine = QStringLiteral("[Meta] GnuDB miss -> iTunes fallback");
const QString skipLine = QStringLiteral("[Meta] no artist/album info, skip iTunes");
const QByteArray searchTail = "&entity=album&limit=10&country=JP&lang=ja_jp";

DiscToc namedDisc(const QString& artist, const QString& album)
{
    DiscToc disc = discOf({0, 15'000}, 40'000);
    disc.albumArtist = artist;
    disc.albumTitle = album;
    return disc;
}

void serveAlbum(LoopbackServices& services)
{
    const ServedAlbum album;
    services.on(hosts::iTunes, "/search", json(itunes::answer({itunes::album(album)})));
    services.on(hosts::iTunes, "/lookup", json(itunes::songAnswer(album, {{1, 1, QStringLiteral("Reed")}})));
    services.on(hosts::images, "/", image(picture(30, 20)));
}

bool asksDiscogs(const LoopbackServices& services, const LogCapture& log)
{
    return !services.targets(hosts::discogs).isEmpty()
           || !log.lines().filter(QStringLiteral("Discogs")).isEmpty();
}

void expectMiss(const MetaResult& found)
{
    EXPECT_TRUE(found.musicBrainz.title.isEmpty());
    EXPECT_TRUE(found.gnuDb.album.isEmpty());
    EXPECT_TRUE(found.iTunes.album.isEmpty());
    EXPECT_TRUE(found.cover.isNull());
}

} // namespace

TEST(DiscLookup, ADiscWithNamesIsAskedOfTheStoreByThem)
{
    LoopbackServices services;
    serveAlbum(services);
    const LogCapture log;
    const MetaResult found =
        lookUpDisc(namedDisc(QStringLiteral("Marsh Choir"), QStringLiteral("Still Water")));
    EXPECT_TRUE(log.debugLines().contains(fallbackLine));
    EXPECT_FALSE(log.debugLines().contains(skipLine));
    EXPECT_EQ(services.targets(hosts::iTunes).value(0), "/search?term=Marsh+Choir+Still+Water" + searchTail);
    EXPECT_EQ(found.iTunes.album, QStringLiteral("Still Water"));
    EXPECT_EQ(found.iTunes.tracks, QStringList{QStringLiteral("Reed")});
    EXPECT_EQ(found.cover.size(), QSize(30, 20));
    EXPECT_FALSE(asksDiscogs(services, log));
}

TEST(DiscLookup, WithoutAPictureInTheStoreDiscogsIsNotAsked)
{
    LoopbackServices services;
    serveAlbum(services);
    services.on(hosts::images, "/", errorPage(404));
    const LogCapture log;
    const MetaResult found =
        lookUpDisc(namedDisc(QStringLiteral("Marsh Choir"), QStringLiteral("Still Water")));
    EXPECT_EQ(found.iTunes.album, QStringLiteral("Still Water"));
    EXPECT_TRUE(found.cover.isNull());
    EXPECT_FALSE(services.targets(hosts::images).isEmpty());
    EXPECT_FALSE(asksDiscogs(services, log));
}

TEST(DiscLookup, OneNameIsEnough)
{
    LoopbackServices services;
    lookUpDisc(namedDisc({}, QStringLiteral("Still Water")));
    lookUpDisc(namedDisc(QStringLiteral("Marsh Choir"), {}));
    lookUpDisc(namedDisc({}, {}));
    EXPECT_EQ(services.targets(hosts::iTunes), (QList<QByteArray>{"/search?term=+Still+Water" + searchTail,
                                                                  "/search?term=Marsh+Choir+" + searchTail}));
}

TEST(DiscLookup, TheArtistOfGnuDbGoesBeforeTheDiscsOwn)
{
    LoopbackServices services;
    services.on(hosts::gnuDb, "/~cddb/cddb.cgi?cmd=cddb+query+", page("200 rock 0b015903 x\r\n"));
    services.on(hosts::gnuDb, "/~cddb/cddb.cgi?cmd=cddb+read+",
                page("210 rock\r\nDTITLE=Other Choir / Album\r\nDTITLE=\r\n.\r\n"));
    lookUpDisc(namedDisc(QStringLiteral("Marsh Choir"), QStringLiteral("Still Water")));
    EXPECT_EQ(services.targets(hosts::iTunes),
              QList<QByteArray>{"/search?term=Other+Choir+Still+Water" + searchTail});
}

TEST(LookupTrouble, WantOfMemoryIsAMissOfEverything)
{
    const DiscToc disc = namedDisc(QStringLiteral("Marsh Choir"), QStringLiteral("Still Water"));
    for (const auto lookUp : {lookUpDisc, lookUpSheet}) {
        for (const int answeredBefore : {0, 1}) {
            int asked = 0;
            FakeHttpTransport transport([&asked, answeredBefore](const HttpRequest&) {
                if (asked++ == answeredBefore)
                    throw std::bad_alloc();
                return HttpAnswer();
            });
            const HttpTransportOverride inPlace(transport);
            MetaResult found;
            EXPECT_NO_THROW(found = lookUp(disc));
            EXPECT_EQ(asked, answeredBefore + 1);
            expectMiss(found);
        }
    }
}

TEST(LookupTrouble, WantOfMemoryForThePictureIsAMissOfEverything)
{
    ServedRelease release;
    release.media = {{1, {QStringLiteral("A"), QStringLiteral("B")}}};
    const QByteArray body = musicbrainz::discAnswer({musicbrainz::release(release)});
    FakeHttpTransport transport([body](const HttpRequest& request) {
        if (request.host != QLatin1String(hosts::musicBrainz))
            throw std::bad_alloc();
        HttpAnswer answer;
        answer.stage = HttpStage::Answered;
        answer.status = 200;
        answer.body = body;
        return answer;
    });
    const HttpTransportOverride inPlace(transport);
    for (const auto lookUp : {lookUpDisc, lookUpSheet}) {
        const LogCapture log;
        MetaResult found;
        EXPECT_NO_THROW(found = lookUp(discOf({0, 15'000}, 40'000)));
        expectMiss(found);
        EXPECT_EQ(log.warnings().last(), QStringLiteral("[Meta] lookup given up: std::bad_alloc"));
    }
}
