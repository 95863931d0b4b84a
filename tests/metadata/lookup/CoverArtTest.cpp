#include "metadata/lookup/CoverArt.h"
#include "support/LogCapture.h"
#include "support/LoopbackServices.h"
#include "support/ServiceAnswers.h"

#include <gtest/gtest.h>

namespace {

const QString artist = QStringLiteral("Marsh Choir");
const QString album = QStringLiteral("Still Water");
const QString mbid = QStringLiteral("3d1c4b60-6a6c-4f0e-9d3e-2c63c3a4f6b1");
const QByteArray archiveTarget = "/release/3d1c4b60-6a6c-4f0e-9d3e-2c63c3a4f6b1/front-500";
const QString skipped = QStringLiteral("CoverArt[Discogs]: token not set, skip");

void playMusicBrainz(LoopbackServices& services)
{
    services.on(hosts::musicBrainz, "/ws/2/release/",
                json(musicbrainz::searchAnswer({mbid, QStringLiteral("other")})));
}

// The iTunes answer leads to a picture on the images host.
void playITunes(LoopbackServices& services)
{
    services.on(hosts::iTunes, "/search", json(itunes::answer({itunes::album({})})));
    services.on(hosts::images, "/art/600x600bb.jpg", image(picture(60, 60)));
}

} // namespace

TEST(CoverArtFetch, TheArchivesPictureComesFirst)
{
    LoopbackServices services;
    playMusicBrainz(services);
    services.on(hosts::coverArtArchive, archiveTarget, redirect("http://images.test/front.png", 307));
    services.on(hosts::images, "/front.png", image(picture(50, 40)));
    const LogCapture log;
    EXPECT_EQ(CoverArt().fetch(artist, album).size(), QSize(50, 40));
    EXPECT_EQ(services.targets(hosts::coverArtArchive), QList<QByteArray>{archiveTarget});
    EXPECT_TRUE(services.targets(hosts::iTunes).isEmpty());
    EXPECT_EQ(log.lines(), (QStringList{QStringLiteral("CoverArt::fetch Marsh Choir Still Water"),
                                        QStringLiteral("CoverArt[MB]: MBID = ") + mbid,
                                        QStringLiteral("CoverArt[MB]: success QSize(50, 40)")}));
}

TEST(CoverArtFetch, AReleaseUnknownToMusicBrainzFallsToITunes)
{
    LoopbackServices services;
    services.on(hosts::musicBrainz, "/", json(musicbrainz::searchAnswer({})));
    playITunes(services);
    const LogCapture log;
    EXPECT_EQ(CoverArt().fetch(artist, album).size(), QSize(60, 60));
    EXPECT_EQ(log.lines(),
              (QStringList{QStringLiteral("CoverArt::fetch Marsh Choir Still Water"),
                           QStringLiteral("CoverArt[MB]: no releases found"), skipped,
                           QStringLiteral("CoverArt[iTunes]: results count 1"),
                           QStringLiteral("CoverArt: downloading https://images.test/art/600x600bb.jpg"),
                           QStringLiteral("CoverArt: success QSize(60, 60)")}));
}

TEST(CoverArtFetch, AnErrorPageOfTheArchiveIsPassedOverWithoutAWord)
{
    LoopbackServices services;
    playMusicBrainz(services);
    services.on(hosts::coverArtArchive, "/", errorPage(404));
    playITunes(services);
    const LogCapture log;
    EXPECT_EQ(CoverArt().fetch(artist, album).size(), QSize(60, 60));
    EXPECT_TRUE(log.warnings().isEmpty());
}

TEST(CoverArtFetch, AnEmptyAnswerOfTheArchiveIsAWarning)
{
    LoopbackServices services;
    playMusicBrainz(services);
    services.on(hosts::coverArtArchive, "/", image({}));
    playITunes(services);
    const LogCapture log;
    EXPECT_EQ(CoverArt().fetch(artist, album).size(), QSize(60, 60));
    EXPECT_EQ(log.warnings(),
              QStringList{QStringLiteral("CoverArt[MB]: image not available for MBID ") + mbid});
}

TEST(CoverArtFetch, ATokenTurnsDiscogsOnBetweenTheOthers)
{
    LoopbackServices services;
    playITunes(services);
    services.on(hosts::discogs, "/",
                json(discogs::searchAnswer(QStringLiteral("https://images.test/d.png"), {})));
    services.on(hosts::images, "/d.png", image(picture(33, 33)));
    CoverArt cover;
    cover.discogsToken = QStringLiteral("token");
    EXPECT_EQ(cover.fetch(artist, album).size(), QSize(33, 33));
    EXPECT_TRUE(services.targets(hosts::iTunes).isEmpty());
    services.on(hosts::discogs, "/", json(discogs::noResults()));
    EXPECT_EQ(cover.fetch(artist, album).size(), QSize(60, 60));
}

TEST(CoverArtFetch, DiscogsIsReachedAfterAnArchiveThatHasNoPicture)
{
    ServedAnswer drops;
    drops.dropped = true;
    for (const ServedAnswer& archive : {errorPage(404), errorPage(500), image({}), drops}) {
        LoopbackServices services;
        playMusicBrainz(services);
        playITunes(services);
        services.on(hosts::coverArtArchive, "/", archive);
        services.on(hosts::discogs, "/",
                    json(discogs::searchAnswer(QStringLiteral("https://images.test/d.png"), {})));
        services.on(hosts::images, "/d.png", image(picture(33, 33)));
        CoverArt cover;
        cover.discogsToken = QStringLiteral("token");
        EXPECT_EQ(cover.fetch(artist, album).size(), QSize(33, 33));
        EXPECT_EQ(services.targets(hosts::coverArtArchive).size(), 1);
        EXPECT_EQ(services.targets(hosts::discogs).size(), 1);
    }
}

TEST(CoverArtPicture, IsTakenFromA200Alone)
{
    LoopbackServices services;
    const QString address = QStringLiteral("https://images.test/p.png");
    ServedAnswer answer = image(picture(33, 22));
    for (const int status : {200, 404, 403, 500, 203}) {
        answer.status = status;
        services.on(hosts::images, "/p.png", answer);
        EXPECT_EQ(CoverArt::pictureAt(address).size(), status == 200 ? QSize(33, 22) : QSize(0, 0)) << status;
    }
    EXPECT_EQ(services.requests().size(), 5);
    EXPECT_TRUE(CoverArt::pictureAt(QString()).isNull());
    EXPECT_EQ(services.requests().size(), 5);
}

TEST(CoverArtFetch, NoSourceIsAWarning)
{
    LoopbackServices services;
    services.on(hosts::iTunes, "/", json(itunes::answer({})));
    const LogCapture log;
    EXPECT_TRUE(CoverArt().fetch(artist, album).isNull());
    EXPECT_EQ(log.warnings().last(), QStringLiteral("CoverArt: not found in any source"));
}

TEST(CoverArtFetch, AFailedDownloadIsAWarning)
{
    LoopbackServices services;
    playITunes(services);
    services.on(hosts::images, "/", image({}));
    const LogCapture log;
    EXPECT_TRUE(CoverArt().fetch(artist, album).isNull());
    EXPECT_EQ(log.warnings().last(), QStringLiteral("CoverArt: image download failed"));
}

TEST(CoverArtFetch, ADownloadThatIsNoPictureIsASuccessWithoutSize)
{
    LoopbackServices services;
    playITunes(services);
    services.on(hosts::images, "/", errorPage(500));
    const LogCapture log;
    EXPECT_TRUE(CoverArt().fetch(artist, album).isNull());
    EXPECT_EQ(log.debugLines().last(), QStringLiteral("CoverArt: success QSize(0, 0)"));
}

TEST(CoverArtFetch, APictureCutOffIsNoCrash)
{
    LoopbackServices services;
    playITunes(services);
    const QByteArray whole = picture(60, 60);
    for (qsizetype length = 1; length < whole.size(); length += 7) {
        ServedAnswer cut = image(whole);
        cut.breakAfter = length;
        services.on(hosts::images, "/", cut);
        const QPixmap read = CoverArt().fetch(artist, album);
        EXPECT_TRUE(read.isNull() || read.size() == QSize(60, 60));
    }
}

TEST(CoverArtFindMbid, AsksByArtistAndRelease)
{
    LoopbackServices services;
    playMusicBrainz(services);
    EXPECT_EQ(CoverArt::findMbid(artist, album), mbid);
    EXPECT_EQ(
        services.targets(hosts::musicBrainz),
        QList<QByteArray>{"/ws/2/release/?query=artist%3A%22Marsh%20Choir%22%20AND%20release%3A%22Still%20"
                          "Water%22&fmt=json&limit=5"});
}

TEST(CoverArtFindMbid, AQuoteInTheAlbumIsSentAsItIs)
{
    LoopbackServices services;
    CoverArt::findMbid(QStringLiteral("%2"), QStringLiteral("a\"b"));
    EXPECT_EQ(services.targets(hosts::musicBrainz),
              QList<QByteArray>{
                  "/ws/2/release/?query=artist%3A%22%252%22%20AND%20release%3A%22a%22b%22&fmt=json&limit=5"});
}

TEST(CoverArtFindMbid, FailuresAreWarnings)
{
    ServedAnswer drops;
    drops.dropped = true;
    const QString failed = QStringLiteral("CoverArt[MB]: request failed");
    const QString none = QStringLiteral("CoverArt[MB]: no releases found");
    const QList<std::pair<ServedAnswer, QString>> cases{{drops, failed},
                                                        {json({}), failed},
                                                        {errorPage(503), none},
                                                        {json(musicbrainz::searchAnswer({})), none}};
    for (const auto& [answer, warning] : cases) {
        LoopbackServices services;
        services.on(hosts::musicBrainz, "/", answer);
        const LogCapture log;
        EXPECT_TRUE(CoverArt::findMbid(artist, album).isEmpty());
        EXPECT_EQ(log.lines(), QStringList{warning});
    }
}

TEST(CoverArtDiscogs, WithoutATokenNobodyIsAsked)
{
    LoopbackServices services;
    const LogCapture log;
    EXPECT_TRUE(CoverArt().discogsImageUrl(artist, album).isEmpty());
    EXPECT_EQ(log.lines(), QStringList{skipped});
    EXPECT_TRUE(services.requests().isEmpty());
}

TEST(CoverArtDiscogs, TheCoverImageStandsBeforeTheThumb)
{
    LoopbackServices services;
    CoverArt cover;
    cover.discogsToken = QStringLiteral("abc");
    services.on(hosts::discogs, "/",
                json(discogs::searchAnswer(QStringLiteral("big"), QStringLiteral("small"))));
    const LogCapture log;
    EXPECT_EQ(cover.discogsImageUrl(artist, album), QStringLiteral("big"));
    EXPECT_EQ(log.lines(), QStringList{QStringLiteral("CoverArt[Discogs]: url = big")});
    EXPECT_EQ(services.targets(hosts::discogs),
              QList<QByteArray>{
                  "/database/search?q=Marsh%20Choir%20Still%20Water&type=release&per_page=5&token=abc"});
    services.on(hosts::discogs, "/", json(discogs::searchAnswer({}, QStringLiteral("small"))));
    EXPECT_EQ(cover.discogsImageUrl(artist, album), QStringLiteral("small"));
    services.on(hosts::discogs, "/", json(discogs::searchAnswer({}, {})));
    EXPECT_TRUE(cover.discogsImageUrl(artist, album).isEmpty());
}

TEST(CoverArtDiscogs, FailuresAreWarnings)
{
    ServedAnswer drops;
    drops.dropped = true;
    ServedAnswer refused = json(discogs::refusal());
    refused.status = 401;
    const QString failed = QStringLiteral("CoverArt[Discogs]: request failed");
    const QString none = QStringLiteral("CoverArt[Discogs]: no results");
    const QList<std::pair<ServedAnswer, QString>> cases{
        {drops, failed}, {json({}), failed}, {refused, none}, {json(discogs::noResults()), none}};
    for (const auto& [answer, warning] : cases) {
        LoopbackServices services;
        services.on(hosts::discogs, "/", answer);
        CoverArt cover;
        cover.discogsToken = QStringLiteral("abc");
        const LogCapture log;
        EXPECT_TRUE(cover.discogsImageUrl(artist, album).isEmpty());
        EXPECT_EQ(log.lines(), QStringList{warning});
    }
}

TEST(CoverArtITunes, AsksWithoutALanguage)
{
    LoopbackServices services;
    playITunes(services);
    EXPECT_EQ(CoverArt::iTunesImageUrl(artist, album),
              QStringLiteral("https://images.test/art/600x600bb.jpg"));
    EXPECT_EQ(services.targets(hosts::iTunes),
              QList<QByteArray>{"/search?term=Marsh+Choir+Still+Water&entity=album&limit=10&country=JP"});
}

TEST(CoverArtITunes, AnEmptyAnswerIsAWarningAndAnErrorPageIsNot)
{
    LoopbackServices services;
    services.on(hosts::iTunes, "/", json({}));
    const LogCapture log;
    EXPECT_TRUE(CoverArt::iTunesImageUrl(artist, album).isEmpty());
    EXPECT_EQ(log.lines(), QStringList{QStringLiteral("CoverArt[iTunes]: request failed")});
    services.on(hosts::iTunes, "/", errorPage(503));
    EXPECT_TRUE(CoverArt::iTunesImageUrl(artist, album).isEmpty());
    EXPECT_EQ(log.lines().last(), QStringLiteral("CoverArt[iTunes]: results count 0"));
}
