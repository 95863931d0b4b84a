// What a disc run looks up before it reads, over real connections on this
// machine.

#include <gtest/gtest.h>

#include "RunRecorder.h"
#include "support/FakeHttpTransport.h"
#include "support/LogCapture.h"
#include "support/LoopbackServices.h"
#include "support/OfflineServices.h"
#include "support/ServiceAnswers.h"
#include "support/SimulatedDrive.h"
#include "support/Tool.h"

#include <QFileInfo>

#include <new>
#include <optional>

namespace {

const QByteArray discQuery = "/ws/2/discid/";
const QByteArray textQuery = "/ws/2/release/?query=";
const QByteArray gnudbQuery = "/~cddb/cddb.cgi?cmd=cddb+query+";
const QByteArray gnudbRead = "/~cddb/cddb.cgi?cmd=cddb+read+";
const QString okLine = QStringLiteral("[RipWorker] MusicBrainz OK: Still Water");
const QString gnudbLine = QStringLiteral("[RipWorker] MusicBrainz not found, trying GnuDB");
const QString coverLine = QStringLiteral("[RipWorker] Fetching cover art via CoverArt");

/// What the worker knew when its step had ended.
struct Announced {
    QString artist;
    QString album;
    QString year;
    QPixmap cover;
    QStringList titles;
    QStringList lines; ///< the worker's debug lines so far
};

/// What the user left to the step.
struct Typed {
    QString artist;
    QString album;
    QString year;
    QStringList titles;
    QPixmap cover;
    QString discogsToken;
};

class MetadataStep : public ::testing::Test {
protected:
    MetadataStep()
    {
        shelf.audio = makeAudio(90, 3);
        shelf.tracks = {{0}, {30}, {60}};
    }

    /// Rips the disc of three tracks; the step's outcome, if it told one.
    std::optional<Announced> step(const Typed& typed, OutputFormat format = OutputWav)
    {
        announced.reset();
        const LogCapture log;
        EXPECT_TRUE(run.drive.open(CdDrive::enumerateDrives().constFirst()));
        DiscToc disc = run.drive.readToc();
        for (qsizetype i = 0; i < typed.titles.size(); ++i)
            disc.tracks[i].title = typed.titles[i];
        const auto connection =
            QObject::connect(&run.worker, &RipWorker::metadataReady,
                             [&](const QString& artist, const QString& album, const QString& year,
                                 const QPixmap& cover, const QList<TrackInfo>& tracks) {
                                 EXPECT_FALSE(announced) << "announced twice";
                                 announced = Announced{artist, album, year, cover, {}, {}};
                                 for (const TrackInfo& track : tracks)
                                     announced->titles << track.title;
                                 announced->lines = log.debugLines().filter(QStringLiteral("[RipWorker]"));
                             });
        run.worker.configure(&run.drive, disc, folder.path(), typed.artist, typed.album, typed.year,
                             typed.cover, typed.discogsToken, 1, 1, 300, format, QString(), 20);
        run.worker.run();
        QObject::disconnect(connection);
        return announced;
    }

    void answerRelease(const ServedRelease& release)
    {
        services.on(hosts::musicBrainz, discQuery,
                    json(musicbrainz::discAnswer({musicbrainz::release(release)})));
    }

    static ServedRelease releaseOf(const QStringList& titles)
    {
        ServedRelease release;
        release.media = {{1, titles}};
        return release;
    }

    void answerGnuDb()
    {
        ServedRecord record;
        record.discTitle = QStringLiteral("Reed Choir / Low Tide");
        record.year = QStringLiteral("1987");
        record.titles = {QStringLiteral("One"), QStringLiteral("Two"), QStringLiteral("Three")};
        services.on(hosts::gnuDb, gnudbQuery, page(gnudb::exactMatch(record)));
        services.on(hosts::gnuDb, gnudbRead, page(gnudb::recordAnswer(record)));
    }

    void answerITunes(int width)
    {
        services.on(hosts::iTunes, "/search", json(itunes::answer({itunes::album({})})));
        services.on(hosts::images, "/art/600x600bb.jpg", image(picture(width, width)));
    }

    /// Everything that was asked for, as host and target.
    QStringList asked() const
    {
        QStringList found;
        for (const ServedRequest& request : services.requests())
            found << QString::fromUtf8(request.host + request.target);
        return found;
    }

    QTemporaryDir folder;
    LoopbackServices services;
    SimulatedDrive shelf;
    DrivePlatformOverride platform{shelf};
    RunRecorder run;
    std::optional<Announced> announced;
};

} // namespace

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
    EXPECT_EQ(run.started, (QStringList{QStringLiteral("0/3 Fetching metadata..."), QStringLiteral("1/3 夜"),
                                        QStringLiteral("2/3 Rain"), QStringLiteral("3/3 Sea")}));
    ASSERT_EQ(services.requests().size(), 2);
    EXPECT_TRUE(services.requests()[0].target.startsWith(discQuery));
    EXPECT_EQ(services.requests()[1].target, front);
    for (const ServedRequest& request : services.requests())
        EXPECT_TRUE(request.secure);
}

TEST_F(MetadataStep, WhatItFoundReachesTheFiles)
{
    const ServedRelease release =
        releaseOf({QStringLiteral("Fog"), QStringLiteral("Rain"), QStringLiteral("Sea")});
    answerRelease(release);
    services.on(hosts::coverArtArchive, "/release/", image(picture(50, 40)));
    ASSERT_TRUE(step({}, OutputFlac));
    EXPECT_TRUE(QFileInfo::exists(folder.filePath(QStringLiteral("cover.jpg"))));
    const QString file = folder.filePath(QStringLiteral("02. Rain.flac"));
    ASSERT_TRUE(QFileInfo::exists(file));
    const ToolResult tags = runTool(QStringLiteral("metaflac"), {QStringLiteral("--export-tags-to=-"), file});
    const QStringList lines = QString::fromUtf8(tags.output).split(QLatin1Char('\n'));
    for (const char* line : {"ALBUM=Still Water", "ARTIST=Marsh Choir", "DATE=1998", "TITLE=Rain"})
        EXPECT_TRUE(lines.contains(QLatin1String(line))) << line;
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

TEST_F(MetadataStep, TracksBeyondTheResultKeepTheirEmptyTitlesAndGetNumbersInTheRun)
{
    answerRelease(releaseOf({QStringLiteral("Only")}));
    ASSERT_TRUE(step({}));
    EXPECT_EQ(announced->titles, (QStringList{QStringLiteral("Only"), QString(), QString()}));
    EXPECT_EQ(run.started.mid(1), (QStringList{QStringLiteral("1/3 Only"), QStringLiteral("2/3 Track 2"),
                                               QStringLiteral("3/3 Track 3")}));
    EXPECT_TRUE(QFileInfo::exists(folder.filePath(QStringLiteral("03. Track 3.wav"))));
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
