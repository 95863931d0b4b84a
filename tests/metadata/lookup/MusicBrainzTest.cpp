#include "metadata/lookup/MusicBrainz.h"
#include "DiscTables.h"
#include "support/LogCapture.h"
#include "support/LoopbackServices.h"
#include "support/ServiceAnswers.h"

#include <QCryptographicHash>

#include <gtest/gtest.h>

namespace {

QString only(const QStringList& lines)
{
    return lines.size() == 1 ? lines.first()
                             : QStringLiteral("%1 lines: ").arg(lines.size()) + lines.join(u'\n');
}

// The id by its definition: the digits of a disc of two tracks, then 97 empty offsets.
QString idOfHexText(const QByteArray& digits)
{
    const QByteArray text = digits + QByteArray(97 * 8, '0');
    EXPECT_EQ(text.size(), 804);
    return QString::fromLatin1(QCryptographicHash::hash(text, QCryptographicHash::Sha1)
                                   .toBase64()
                                   .replace('+', '.')
                                   .replace('/', '_')
                                   .replace('=', '-'));
}

} // namespace

TEST(MusicBrainzDiscId, ADiscOfTwoTracksIsTheHashOfItsHexText)
{
    const DiscToc disc = discOf({0, 15'000}, 40'000);
    const QByteArray digits = "0102"
                              "00009CD6"
                              "00000096"
                              "00003B2E";
    const QString id = musicBrainzDiscId(disc);
    EXPECT_EQ(id, idOfHexText(digits));
    EXPECT_EQ(id.size(), 28);
}

TEST(MusicBrainzDiscId, NoTracksGiveNoId)
{
    const LogCapture log;
    EXPECT_TRUE(musicBrainzDiscId(DiscToc()).isEmpty());
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST(MusicBrainzDiscId, ADataTrackCounts)
{
    DiscToc disc = discOf({0, 15'000, 26'400}, 40'000);
    const QString audio = musicBrainzDiscId(disc);
    disc.tracks[2].isData = true;
    EXPECT_EQ(musicBrainzDiscId(disc), audio);
    disc.tracks.removeLast();
    EXPECT_NE(musicBrainzDiscId(disc), audio);
}

TEST(MusicBrainzDiscId, OffsetsStandByPlaceAndNotByNumber)
{
    DiscToc disc = discOf({0, 15'000}, 40'000);
    disc.tracks[0].number = 5;
    disc.tracks[1].number = 6;
    const QByteArray digits = "0506"
                              "00009CD6"
                              "00000096"
                              "00003B2E";
    EXPECT_EQ(musicBrainzDiscId(disc), idOfHexText(digits));
}

TEST(MusicBrainzDiscId, IsLogged)
{
    const LogCapture log;
    const QString id = musicBrainzDiscId(discOf({0, 15'000}, 40'000));
    EXPECT_EQ(log.debugLines(),
              (QStringList{QStringLiteral("[MB] DiscID calc: first= 1 last= 2 leadout= 40150"),
                           QStringLiteral("  track 1 offset= 150"), QStringLiteral("  track 2 offset= 15150"),
                           QStringLiteral("[MB] DiscID: ") + id}));
}

TEST(MusicBrainzLookup, AsksForTheDiscsIdAndTakesTheFirstRelease)
{
    LoopbackServices services;
    ServedRelease first;
    first.media = {{1, {QStringLiteral("雨"), QStringLiteral("Reeds")}}};
    ServedRelease second;
    second.title = QStringLiteral("Another");
    services.on(hosts::musicBrainz, "/ws/2/discid/",
                json(musicbrainz::discAnswer({musicbrainz::release(first), musicbrainz::release(second)})));
    const DiscToc disc = discOf({0, 15'000}, 40'000);
    const QString id = musicBrainzDiscId(disc);

    const LogCapture log;
    const MusicBrainzResult result = musicBrainzLookup(disc);
    EXPECT_EQ(result.title, QStringLiteral("Still Water"));
    ASSERT_EQ(result.tracks.size(), 2);
    EXPECT_EQ(result.tracks[0].title, QStringLiteral("雨"));
    EXPECT_EQ(
        services.targets(hosts::musicBrainz),
        QList<QByteArray>{"/ws/2/discid/" + id.toLatin1() + "?inc=recordings+artists&fmt=json&cdstubs=no"});
    EXPECT_TRUE(services.requests().first().secure);
    EXPECT_TRUE(log.debugLines().contains(
        QStringLiteral("[MB] DiscID URL: "
                       "https://musicbrainz.org/ws/2/discid/%1?inc=recordings+artists&fmt=json&cdstubs=no")
            .arg(id)));
    EXPECT_EQ(log.debugLines().last(), QStringLiteral("[MB] DiscID hit: Still Water"));
    EXPECT_TRUE(log.warnings().isEmpty());
}

TEST(MusicBrainzLookup, LogsThreeHundredBytesOfTheAnswer)
{
    LoopbackServices services;
    const QByteArray body = QByteArray(300, 'a') + 'b';
    services.on(hosts::musicBrainz, "/", page(body));
    const LogCapture log;
    musicBrainzLookup(discOf({0}, 4'000));
    EXPECT_TRUE(log.debugLines().contains(QStringLiteral("[MB] DiscID response: ") + QString(300, u'a')));
}

TEST(MusicBrainzLookup, NoTracksAskNobody)
{
    LoopbackServices services;
    const LogCapture log;
    EXPECT_TRUE(musicBrainzLookup(DiscToc()).title.isEmpty());
    EXPECT_TRUE(services.requests().isEmpty());
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST(MusicBrainzLookup, AMissIsOneWarningOfTheParserAndOneOfTheLookup)
{
    const QString miss = QStringLiteral("[MB] DiscID miss -> iTunes fallback will handle");
    struct Case {
        ServedAnswer answer;
        QStringList warnings;
    };
    const QList<Case> cases{
        {errorPage(404), {miss}},
        {errorPage(503), {miss}},
        {json({}), {miss}},
        {json(musicbrainz::error(QStringLiteral("Not Found"))),
         {QStringLiteral("[MB] error: Not Found"), miss}},
        {json(musicbrainz::discAnswer({})), {QStringLiteral("[MB] no releases found"), miss}},
        {page("<html>maintenance</html>"), {QStringLiteral("[MB] no releases found"), miss}},
    };
    for (const Case& one : cases) {
        LoopbackServices services;
        services.on(hosts::musicBrainz, "/", one.answer);
        const LogCapture log;
        const MusicBrainzResult result = musicBrainzLookup(discOf({0}, 4'000));
        EXPECT_TRUE(result.title.isEmpty());
        EXPECT_EQ(result.discCount, 1);
        EXPECT_EQ(log.warnings(), one.warnings);
    }
}

TEST(MusicBrainzLookup, NoConnectionIsAMiss)
{
    LoopbackServices services;
    ServedAnswer drops;
    drops.dropped = true;
    services.on(hosts::musicBrainz, "/", drops);
    const LogCapture log;
    EXPECT_TRUE(musicBrainzLookup(discOf({0}, 4'000)).title.isEmpty());
    ASSERT_EQ(log.warnings().size(), 2);
    EXPECT_TRUE(log.warnings()[0].startsWith(QLatin1String("[HTTP] request failed, err= ")));
    EXPECT_TRUE(log.warnings()[1].startsWith(QLatin1String("[MB] DiscID miss")));
}

TEST(MusicBrainzLookup, ABodyCutOffInTheMiddleIsAMiss)
{
    LoopbackServices services;
    ServedAnswer cut = json(musicbrainz::discAnswer({musicbrainz::release({})}));
    cut.breakAfter = cut.body.size() / 2;
    services.on(hosts::musicBrainz, "/", cut);
    const LogCapture log;
    EXPECT_TRUE(musicBrainzLookup(discOf({0}, 4'000)).title.isEmpty());
    EXPECT_EQ(log.warnings().first(), QStringLiteral("[MB] no releases found"));
}

TEST(MusicBrainzLookup, ARedirectToPlainHttpIsFollowed)
{
    LoopbackServices services;
    services.on(hosts::musicBrainz, "/", redirect("http://b.test/moved"));
    services.on("b.test", "/moved", json(musicbrainz::discAnswer({musicbrainz::release({})})));
    const LogCapture log;
    EXPECT_EQ(musicBrainzLookup(discOf({0}, 4'000)).title, QStringLiteral("Still Water"));
    EXPECT_EQ(only(log.warnings()), QStringLiteral("0 lines: "));
}
