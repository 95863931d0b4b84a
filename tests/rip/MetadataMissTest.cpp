// A disc run whose lookups find nothing, are not made, or fail.

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
    EXPECT_EQ(run.results.size(), 3);
    EXPECT_TRUE(run.errors.isEmpty());
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
        run.results.clear();
        ASSERT_TRUE(step({QString(), QString(), QStringLiteral("2001"), {}, {}, QString()}));
        EXPECT_TRUE(announced->album.isEmpty());
        EXPECT_EQ(announced->year, QStringLiteral("2001"));
        EXPECT_TRUE(announced->cover.isNull());
        EXPECT_EQ(run.results.size(), 3);
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

TEST_F(MetadataStep, WithoutANetworkItIsAnnouncedAndTheRunGoesOn)
{
    const OfflineServices offline;
    ASSERT_TRUE(step({QStringLiteral("Me"), QStringLiteral("My own"), QString(), {}, {}, QString()}));
    EXPECT_EQ(announced->album, QStringLiteral("My own"));
    EXPECT_TRUE(announced->cover.isNull());
    EXPECT_TRUE(asked().isEmpty());
    EXPECT_EQ(run.results.size(), 3);
    EXPECT_EQ(run.finishedCount, 1);
}

TEST_F(MetadataStep, ARunThatIsStoppedAsksNoFurtherService)
{
    FakeHttpTransport stopper([this](const HttpRequest&) {
        run.worker.requestStop();
        return HttpAnswer();
    });
    const HttpTransportOverride inPlace(stopper);
    ASSERT_TRUE(step({}));
    EXPECT_EQ(stopper.requests().size(), 1);
    EXPECT_TRUE(run.results.isEmpty());
    EXPECT_EQ(run.finishedCount, 1);
}

TEST_F(MetadataStep, AnImageIsNotLookedUp)
{
    answerRelease(releaseOf({QStringLiteral("Elsewhere")}));
    QObject::connect(&run.worker, &RipWorker::metadataReady, [] { ADD_FAILURE() << "no step in this run"; });
    ImageDescription image;
    image.tracks = {{0, QString()}};
    run.rip(writeImage(folder.path(), image, makeAudio(20, 1)), OutputWav,
            folder.filePath(QStringLiteral("out")));
    EXPECT_EQ(run.results.size(), 1);
    EXPECT_TRUE(run.started.filter(QStringLiteral("Fetching metadata...")).isEmpty());
    EXPECT_TRUE(asked().isEmpty());
}

TEST_F(MetadataStep, AnAudioFileIsNotLookedUp)
{
    answerRelease(releaseOf({QStringLiteral("Elsewhere")}));
    QObject::connect(&run.worker, &RipWorker::metadataReady, [] { ADD_FAILURE() << "no step in this run"; });
    const QString file = writeFile(folder.path(), QStringLiteral("song.wav"), wrapInWave(makeAudio(20, 1)));
    run.worker.configure(nullptr, DiscToc(), folder.filePath(QStringLiteral("out")), QString(), QString(),
                         QString(), QPixmap(), QString(), 1, 1, 300, OutputWav, file, 20);
    run.worker.run();
    EXPECT_EQ(run.finishedCount, 1);
    EXPECT_TRUE(run.started.filter(QStringLiteral("Fetching metadata...")).isEmpty());
    EXPECT_TRUE(asked().isEmpty());
}

// Without a guard the exception would leave the thread's slot.
TEST_F(MetadataStep, WantOfMemoryIsAMissAndTheRipGoesOn)
{
    for (const QString& typed : {QString(), QStringLiteral("Typed")}) {
        const LogCapture log;
        FakeHttpTransport exhausted([](const HttpRequest&) -> HttpAnswer { throw std::bad_alloc(); });
        const HttpTransportOverride inPlace(exhausted);
        RunRecorder once;
        QStringList announcedAlbums;
        QObject::connect(&once.worker, &RipWorker::metadataReady,
                         [&](const QString&, const QString& album, const QString&, const QPixmap&,
                             const QList<TrackInfo>&) { announcedAlbums << album; });
        ASSERT_TRUE(once.drive.open(CdDrive::enumerateDrives().constFirst()));
        once.worker.configure(&once.drive, once.drive.readToc(), folder.path(), typed, typed, QString(),
                              QPixmap(), QString(), 1, 1, 300, OutputWav, QString(), 20);
        EXPECT_NO_THROW(once.worker.run());
        EXPECT_EQ(announcedAlbums, QStringList{typed});
        EXPECT_EQ(once.results.size(), 3);
        EXPECT_EQ(once.finishedCount, 1);
        EXPECT_TRUE(log.warnings().contains(QStringLiteral("[RipWorker] lookup given up: std::bad_alloc")));
    }
}
