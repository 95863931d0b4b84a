// What becomes of the metadata step's finds in a whole run, and which runs take it.

#include "RunRecorder.h"
#include "support/FakeHttpTransport.h"
#include "support/LoopbackServices.h"
#include "support/ServiceAnswers.h"
#include "support/SimulatedDrive.h"
#include "support/Tool.h"

#include <QFileInfo>

#include <gtest/gtest.h>

#include <new>

namespace {

class MetadataRun : public ::testing::Test {
protected:
    MetadataRun()
    {
        shelf.audio = makeAudio(90, 3);
        shelf.tracks = {{0}, {30}, {60}};
        ServedRelease release;
        release.media = {{1, {QStringLiteral("Fog"), QStringLiteral("Rain")}}};
        services.on(hosts::musicBrainz, "/ws/2/discid/",
                    json(musicbrainz::discAnswer({musicbrainz::release(release)})));
        services.on(hosts::coverArtArchive, "/release/", image(picture(50, 40)));
    }

    /// Rips the disc with nothing typed.
    void rip(OutputFormat format)
    {
        ASSERT_TRUE(run.drive.open(shelf.letter));
        run.worker.configure(&run.drive, run.drive.readToc(), folder.path(), QString(), QString(), QString(),
                             QPixmap(), QString(), 1, 1, 300, format, QString(), 20);
        run.worker.run();
        EXPECT_EQ(run.finishedCount, 1);
    }

    void expectNoStep() const
    {
        EXPECT_EQ(run.results.size(), 1);
        EXPECT_EQ(run.finishedCount, 1);
        EXPECT_TRUE(run.announced.isEmpty());
        EXPECT_TRUE(run.started.filter(QStringLiteral("Fetching metadata...")).isEmpty());
        EXPECT_TRUE(services.requests().isEmpty());
    }

    QTemporaryDir folder;
    LoopbackServices services;
    SimulatedDrive shelf;
    DrivePlatformOverride platform{shelf};
    RunRecorder run;
};

} // namespace

TEST_F(MetadataRun, WhatItFoundReachesTheFiles)
{
    rip(OutputFlac);
    EXPECT_EQ(run.started, (QStringList{QStringLiteral("0/3 Fetching metadata..."), QStringLiteral("1/3 Fog"),
                                        QStringLiteral("2/3 Rain"), QStringLiteral("3/3 Track 3")}));
    EXPECT_TRUE(QFileInfo::exists(folder.filePath(QStringLiteral("cover.jpg"))));
    EXPECT_TRUE(QFileInfo::exists(folder.filePath(QStringLiteral("03. Track 3.flac"))));
    const QString file = folder.filePath(QStringLiteral("02. Rain.flac"));
    ASSERT_TRUE(QFileInfo::exists(file));
    const ToolResult tags = runTool(QStringLiteral("metaflac"), {QStringLiteral("--export-tags-to=-"), file});
    const QStringList lines = QString::fromUtf8(tags.output).split(QLatin1Char('\n'));
    for (const char* line : {"ALBUM=Still Water", "ARTIST=Marsh Choir", "DATE=1998", "TITLE=Rain"})
        EXPECT_TRUE(lines.contains(QLatin1String(line))) << line;
}

TEST_F(MetadataRun, WhatItFoundIsAnnouncedAndNamesTheFiles)
{
    run.worker.setNamingRule(QStringLiteral("{album} {track}"));
    rip(OutputWav);
    ASSERT_EQ(run.announced.size(), 1);
    const RipOrder& announced = run.announced.constFirst();
    EXPECT_EQ(announced.artist, QStringLiteral("Marsh Choir"));
    EXPECT_EQ(announced.album, QStringLiteral("Still Water"));
    EXPECT_EQ(announced.year, QStringLiteral("1998"));
    EXPECT_EQ(announced.cover.size(), QSize(50, 40));
    ASSERT_EQ(announced.disc.tracks.size(), 3);
    EXPECT_EQ(announced.disc.tracks[1].title, QStringLiteral("Rain"));
    EXPECT_EQ(run.worker.outputBasePath(2, QString()), folder.filePath(QStringLiteral("Still Water 02")));
    EXPECT_TRUE(QFileInfo::exists(folder.filePath(QStringLiteral("Still Water 02.wav"))));
}

TEST_F(MetadataRun, ARunThatIsStoppedInItReadsNothing)
{
    FakeHttpTransport stopper([this](const HttpRequest&) {
        run.worker.requestStop();
        return HttpAnswer();
    });
    const HttpTransportOverride inPlace(stopper);
    rip(OutputWav);
    EXPECT_EQ(stopper.requests().size(), 1);
    EXPECT_EQ(run.announced.size(), 1);
    EXPECT_TRUE(run.results.isEmpty());
}

TEST_F(MetadataRun, WantOfMemoryInItLeavesTheRipToGoOn)
{
    FakeHttpTransport exhausted([](const HttpRequest&) -> HttpAnswer { throw std::bad_alloc(); });
    const HttpTransportOverride inPlace(exhausted);
    EXPECT_NO_THROW(rip(OutputWav));
    EXPECT_EQ(run.announced.size(), 1);
    EXPECT_EQ(run.results.size(), 3);
}

TEST_F(MetadataRun, AnImageIsNotLookedUp)
{
    ImageDescription description;
    description.tracks = {{0, QString()}};
    run.rip(writeImage(folder.path(), description, makeAudio(20, 1)), OutputWav,
            folder.filePath(QStringLiteral("out")));
    expectNoStep();
}

TEST_F(MetadataRun, AnAudioFileIsNotLookedUp)
{
    const QString file = writeFile(folder.path(), QStringLiteral("song.wav"), wrapInWave(makeAudio(20, 1)));
    run.worker.configure(nullptr, DiscToc(), folder.filePath(QStringLiteral("out")), QString(), QString(),
                         QString(), QPixmap(), QString(), 1, 1, 300, OutputWav, file, 20);
    run.worker.run();
    expectNoStep();
}
