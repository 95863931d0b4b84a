// Lookups in front of a disc run that find nothing, are not made, or fail.

#include "MetadataStage.h"
#include "support/FakeHttpTransport.h"
#include "support/OfflineServices.h"

#include <new>

TEST_F(MetadataStep, AMissEverywhereIsAnnouncedToo)
{
    ASSERT_TRUE(step({}));
    EXPECT_TRUE(announced->artist.isEmpty() && announced->album.isEmpty() && announced->year.isEmpty());
    EXPECT_TRUE(announced->cover.isNull());
    EXPECT_EQ(announced->titles, QStringList(3, QString()));
    EXPECT_EQ(announced->lines, QStringList{gnudbLine}) << "no cover is sought for an album without a name";
    EXPECT_EQ(asked().size(), 2) << "the disc at two services";
}

TEST_F(MetadataStep, ServicesInTroubleAreMisses)
{
    ServedAnswer hangsUp;
    hangsUp.dropped = true;
    ServedAnswer half = json("{\"releases\": [");
    half.claimedLength = 4000;
    half.breakAfter = half.body.size();
    for (const ServedAnswer& trouble :
         {errorPage(503), hangsUp, half, page("<html>maintenance</html>"), page(QByteArray()),
          json(musicbrainz::error(QStringLiteral("Not Found")))}) {
        for (const char* host : {hosts::musicBrainz, hosts::gnuDb, hosts::coverArtArchive, hosts::iTunes})
            services.on(host, "/", trouble);
        ASSERT_TRUE(step({QString(), QString(), QStringLiteral("2001"), {}, {}, QString()}));
        EXPECT_TRUE(announced->album.isEmpty());
        EXPECT_EQ(announced->year, QStringLiteral("2001"));
        EXPECT_TRUE(announced->cover.isNull());
    }
}

TEST_F(MetadataStep, ATextLongerThanAFieldHoldsIsCut)
{
    constexpr qsizetype mostCharacters = 32767;
    const QString endless(1'000'000, u'z');
    answerRelease(releaseOf({endless, QStringLiteral("Short")}));
    ASSERT_TRUE(step({}));
    EXPECT_EQ(announced->titles.value(0), endless.left(mostCharacters));
    EXPECT_EQ(announced->titles.value(1), QStringLiteral("Short"));
}

TEST_F(MetadataStep, WithoutANetworkItIsAnnounced)
{
    const OfflineServices offline;
    ASSERT_TRUE(step({QStringLiteral("Me"), QStringLiteral("My own"), QString(), {}, {}, QString()}));
    EXPECT_EQ(announced->album, QStringLiteral("My own"));
    EXPECT_TRUE(announced->cover.isNull());
    EXPECT_TRUE(asked().isEmpty());
}

TEST_F(MetadataStep, ARunThatIsStoppedAsksNoFurtherService)
{
    FakeHttpTransport stopper([this](const HttpRequest&) {
        said.stop = true;
        return HttpAnswer();
    });
    const HttpTransportOverride inPlace(stopper);
    ASSERT_TRUE(step({}));
    EXPECT_EQ(stopper.requests().size(), 1);
}

TEST_F(MetadataStep, ARunThatIsStoppedSeeksNoCover)
{
    FakeHttpTransport stopper([this](const HttpRequest&) {
        said.stop = true;
        return HttpAnswer();
    });
    const HttpTransportOverride inPlace(stopper);
    ASSERT_TRUE(step({QString(), QStringLiteral("My own"), QString(), {}, {}, QString()}));
    EXPECT_EQ(stopper.requests().size(), 1);
    EXPECT_TRUE(announced->lines.isEmpty());
}

// Without a guard the exception would leave the thread's slot.
TEST_F(MetadataStep, WantOfMemoryIsAMiss)
{
    FakeHttpTransport exhausted([](const HttpRequest&) -> HttpAnswer { throw std::bad_alloc(); });
    const HttpTransportOverride inPlace(exhausted);
    for (const QString& typed : {QString(), QStringLiteral("Typed")}) {
        ASSERT_NO_THROW(step({typed, typed, QString(), {}, {}, QString()}));
        ASSERT_TRUE(announced);
        EXPECT_EQ(announced->album, typed);
        EXPECT_TRUE(warnings.contains(QStringLiteral("[RipWorker] lookup given up: std::bad_alloc")));
    }
}
