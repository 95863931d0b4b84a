#include "rip/TrackWriter.h"

#include "RunParts.h"
#include "TrackFiles.h"
#include "base/FreeSpace.h"
#include "codecs/EncoderOptions.h"
#include "support/FileSizeLimit.h"
#include "support/Tool.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <atomic>
#include <new>
#include <thread>

namespace {

class TrackWriterTest : public ::testing::Test {
protected:
    TrackWriterTest() { run.order.outputFolder = folder.path(); }
    ~TrackWriterTest() override
    {
        pretendFreeSpace(std::nullopt);
        encoderOptions.replayGainEnabled = false;
    }

    QString file(const QString& name) const { return folder.filePath(name); }
    QStringList files() const { return QDir(folder.path()).entryList(QDir::Files, QDir::Name); }

    TrackLabel label(int number = 1) const
    {
        return {file(QString::number(number)), QStringLiteral("Song"), number, 3, {}};
    }

    bool write(OutputFormat format, int number = 1)
    {
        run.order.outputFormat = format;
        return run.writer.write(QList<int>(samples), AudioFormat(), label(number));
    }

    /// The track's tags as metaflac lists them.
    QStringList tagsOf(const QString& name) const
    {
        const ToolResult tool =
            runTool(QStringLiteral("metaflac"), {QStringLiteral("--export-tags-to=-"), file(name)});
        EXPECT_TRUE(tool.ok()) << tool.errors.toStdString();
        return QString::fromUtf8(tool.output).toUpper().split(u'\n', Qt::SkipEmptyParts);
    }

    bool hasTag(const QString& name, const char* key) const
    {
        return !tagsOf(name).filter(QLatin1String(key)).isEmpty();
    }

    QTemporaryDir folder;
    RunParts run;
    const QList<int> samples = QList<int>(44100, 1000 << 16); ///< half a second
};

} // namespace

TEST_F(TrackWriterTest, EachFormatHasItsCodecAndItsExtension)
{
    const struct {
        int format;
        const char* name;
        const char* codec;
    } kinds[] = {{OutputFlac, "1.flac", "flac"}, {OutputWav, "2.wav", "pcm_s16le"},
                 {OutputMp3, "3.mp3", "mp3"},    {OutputAac, "4.m4a", "aac"},
                 {OutputAlac, "5.m4a", "alac"},  {9, "6.wav", "pcm_s16le"}};
    int number = 0;
    for (const auto& kind : kinds) {
        SCOPED_TRACE(kind.name);
        ASSERT_TRUE(write(static_cast<OutputFormat>(kind.format), ++number));
        const ToolResult probe = runTool(
            QStringLiteral("ffprobe"),
            {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-select_streams"),
             QStringLiteral("a"), QStringLiteral("-show_entries"), QStringLiteral("stream=codec_name"),
             QStringLiteral("-of"), QStringLiteral("default=nk=1:nw=1"), file(QLatin1String(kind.name))});
        EXPECT_EQ(probe.output.trimmed(), kind.codec);
    }
    EXPECT_EQ(files().size(), 6);
    EXPECT_TRUE(run.report.said.isEmpty());
}

TEST_F(TrackWriterTest, EveryValueIsWrittenInTheChannelsOfTheFormat)
{
    constexpr AudioFormat oneChannel{8000, 1, 16};
    run.order.outputFormat = OutputWav;
    ASSERT_TRUE(run.writer.write({0x01020000, -65536, 0x7FFE0000}, oneChannel, label()));
    EXPECT_EQ(audioOfWave(file(QStringLiteral("1.wav"))), QByteArray("\x02\x01\xFF\xFF\xFE\x7F", 6));
}

TEST_F(TrackWriterTest, TheOrdersAndTheTracksOwnTextsAreTheTags)
{
    ASSERT_TRUE(write(OutputFlac, 2));
    const QStringList tags = tagsOf(QStringLiteral("2.flac"));
    for (const char* tag : {"TITLE=SONG", "ARTIST=TEST ARTIST", "ALBUM=TEST ALBUM", "DATE=1998",
                            "TRACKNUMBER=2", "TRACKTOTAL=3", "DISCNUMBER=1", "DISCTOTAL=2"})
        EXPECT_TRUE(tags.contains(QLatin1String(tag))) << tag;
}

TEST_F(TrackWriterTest, TheLabelsCoverIsEmbeddedAndNotTheOrders)
{
    run.order.cover = QPixmap(4, 4);
    run.order.outputFormat = OutputFlac;
    const auto pictures = [this](const QString& name) {
        return runTool(QStringLiteral("metaflac"),
                       {QStringLiteral("--list"), QStringLiteral("--block-type=PICTURE"), file(name)})
            .output;
    };
    ASSERT_TRUE(run.writer.write(QList<int>(samples), AudioFormat(), label(1)));
    EXPECT_TRUE(pictures(QStringLiteral("1.flac")).isEmpty());
    TrackLabel withCover = label(2);
    withCover.cover = QPixmap(30, 20);
    withCover.cover.fill(Qt::red);
    ASSERT_TRUE(run.writer.write(QList<int>(samples), AudioFormat(), withCover));
    EXPECT_TRUE(pictures(QStringLiteral("2.flac")).contains("MIME type: image/jpeg"));
}

// Fresh memory for each track would cost as much as its encoding.
TEST_F(TrackWriterTest, TheSamplesComeBackInTheMemoryInWhichTheyWereGiven)
{
    QList<int> pcm = samples;
    pcm.detach();
    const int* memory = pcm.constData();
    run.order.outputFormat = OutputWav;
    ASSERT_TRUE(run.writer.write(std::move(pcm), AudioFormat(), label()));
    EXPECT_EQ(run.writer.writtenSamples().constData(), memory);
    EXPECT_EQ(run.writer.writtenSamples(), samples);
    const QList<int> spare = run.writer.takeSpareSamples();
    EXPECT_EQ(spare.constData(), memory);
    EXPECT_TRUE(run.writer.writtenSamples().isEmpty());
}

TEST_F(TrackWriterTest, AFileThatIsNotWholeIsRemovedAndItsSamplesStay)
{
    {
        const FileSizeLimit limit(10000);
        EXPECT_FALSE(write(OutputWav));
    }
    EXPECT_TRUE(files().isEmpty());
    EXPECT_EQ(run.writer.writtenSamples(), samples);
    EXPECT_EQ(run.writer.unfinishedFile(), QString());
}

TEST_F(TrackWriterTest, AnEncoderThatRefusesTheFormatLeavesTheFileOfThatName)
{
    constexpr AudioFormat nineChannels{44100, 9, 16};
    ASSERT_TRUE(write(OutputFlac));
    const QByteArray before = contentOf(file(QStringLiteral("1.flac")));
    EXPECT_FALSE(run.writer.write(QList<int>(900), nineChannels, label()));
    EXPECT_TRUE(contentOf(file(QStringLiteral("1.flac"))) == before);
}

TEST_F(TrackWriterTest, AFileThatCannotBeMadeLeavesWhatIsThere)
{
    ASSERT_TRUE(QDir().mkpath(file(QStringLiteral("1.wav/inside"))));
    EXPECT_FALSE(write(OutputWav));
    EXPECT_TRUE(QFileInfo(file(QStringLiteral("1.wav/inside"))).isDir());
    EXPECT_FALSE(run.writer.write(QList<int>(samples), AudioFormat(),
                                  {file(QStringLiteral("no/folder/1")), QString(), 1, 1, {}}));
    EXPECT_TRUE(files().isEmpty());
}

// With no room for tags a line is said while the file is still in work.
TEST_F(TrackWriterTest, TheFileIsUnfinishedUntilItsTagsAreDealtWith)
{
    pretendFreeSpace(1);
    QString inWork;
    run.report.onLog = [&](const QString&) { inWork = run.writer.unfinishedFile(); };
    EXPECT_EQ(run.writer.unfinishedFile(), QString());
    ASSERT_TRUE(write(OutputWav));
    EXPECT_EQ(inWork, file(QStringLiteral("1.wav")));
    EXPECT_EQ(run.writer.unfinishedFile(), QString());
}

TEST_F(TrackWriterTest, AnotherThreadMayAskForTheUnfinishedFile)
{
    std::atomic<bool> over = false;
    QStringList seen;
    std::thread asking([&] {
        while (!over)
            seen.append(run.writer.unfinishedFile());
    });
    for (int number = 1; number <= 3; ++number)
        EXPECT_TRUE(write(OutputFlac, number));
    over = true;
    asking.join();
    for (const QString& path : std::as_const(seen))
        EXPECT_TRUE(path.isEmpty() || path.endsWith(QStringLiteral(".flac"))) << path.toStdString();
}

TEST_F(TrackWriterTest, WorkWithinMemoryIsLeftAlone)
{
    EXPECT_TRUE(run.writer.withinMemory([this] { EXPECT_TRUE(write(OutputWav)); }));
    EXPECT_EQ(files(), QStringList{QStringLiteral("1.wav")});
    EXPECT_FALSE(run.writer.writtenSamples().isEmpty());
}

TEST_F(TrackWriterTest, WantOfMemoryLeavesNeitherTheFileInWorkNorSamples)
{
    ASSERT_TRUE(write(OutputWav, 1));
    pretendFreeSpace(1);
    run.report.onLog = [](const QString&) { throw std::bad_alloc(); };
    EXPECT_FALSE(run.writer.withinMemory([this] { write(OutputWav, 2); }));
    EXPECT_EQ(files(), QStringList{QStringLiteral("1.wav")}) << "a finished file stays";
    EXPECT_EQ(run.writer.unfinishedFile(), QString());
    EXPECT_FALSE(run.writer.withinMemory([] { throw std::bad_alloc(); }));
    EXPECT_TRUE(run.writer.writtenSamples().isEmpty());
}

TEST_F(TrackWriterTest, TheCoverIsSavedAsAJpegUnderItsName)
{
    run.order.cover = QPixmap(20, 10);
    run.order.cover.fill(Qt::blue);
    run.writer.saveCover();
    EXPECT_EQ(files(), QStringList{QStringLiteral("cover.jpg")});
    EXPECT_TRUE(contentOf(file(QStringLiteral("cover.jpg"))).startsWith("\xFF\xD8\xFF"));
}

TEST_F(TrackWriterTest, GainIsWrittenAtTheEndForTheAlbumOrForEachFile)
{
    encoderOptions.replayGainEnabled = true;
    for (const GainOf scope : {GainOf::album, GainOf::eachFile}) {
        ASSERT_TRUE(write(OutputFlac));
        EXPECT_FALSE(hasTag(QStringLiteral("1.flac"), "REPLAYGAIN"));
        run.writer.finish(scope);
        EXPECT_TRUE(hasTag(QStringLiteral("1.flac"), "REPLAYGAIN_TRACK_GAIN"));
        EXPECT_TRUE(hasTag(QStringLiteral("1.flac"), "REPLAYGAIN_TRACK_PEAK"));
        EXPECT_EQ(hasTag(QStringLiteral("1.flac"), "REPLAYGAIN_ALBUM_GAIN"), scope == GainOf::album);
        EXPECT_TRUE(run.writer.writtenSamples().isEmpty()) << "the memory goes";
    }
}

TEST_F(TrackWriterTest, AStoppedRunGetsNoGainNotEvenLater)
{
    encoderOptions.replayGainEnabled = true;
    ASSERT_TRUE(write(OutputFlac));
    run.report.stop = true;
    run.writer.finish(GainOf::album);
    run.report.stop = false;
    run.writer.finish(GainOf::album);
    EXPECT_FALSE(hasTag(QStringLiteral("1.flac"), "REPLAYGAIN"));
}

TEST_F(TrackWriterTest, WithoutTheSwitchNoGainIsMeasured)
{
    ASSERT_TRUE(write(OutputFlac));
    encoderOptions.replayGainEnabled = true;
    run.writer.finish(GainOf::album);
    EXPECT_FALSE(hasTag(QStringLiteral("1.flac"), "REPLAYGAIN"));
}
