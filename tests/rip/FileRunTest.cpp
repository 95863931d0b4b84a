#include "rip/FileRun.h"

#include "RunParts.h"
#include "TrackFiles.h"
#include "base/PhysicalMemory.h"
#include "codecs/DecoderFiles.h"
#include "support/FileSizeLimit.h"
#include "support/Language.h"
#include "support/Tool.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

constexpr quint32 allOnes = 0xFFFFFFFF;

class FileRunTest : public ::testing::Test {
protected:
    FileRunTest() { speak(2); }
    ~FileRunTest() override { speak(2); }

    /// A folder named "Album" for the sources; the results go to "out".
    QString source(const QString& name) const
    {
        QDir(folder.path()).mkpath(QStringLiteral("Album"));
        return folder.filePath(QStringLiteral("Album/") + name);
    }
    QString out(const QString& name) const { return folder.filePath(QStringLiteral("out/") + name); }

    static void convert(RunParts& run, const QString& audioFile, OutputFormat format, const QString& target)
    {
        run.order.sourceAudioFile = audioFile;
        run.order.outputFormat = format;
        run.order.outputFolder = target;
        FileRun(run.order, run.writer, run.report).run();
    }
    void convert(RunParts& run, const QString& audioFile, OutputFormat format) const
    {
        convert(run, audioFile, format, folder.filePath(QStringLiteral("out")));
    }

    /// The run ended by this text alone, with no track begun.
    static void expectRefused(const RunParts& run, const QString& text)
    {
        EXPECT_EQ(run.report.said, QStringList{QStringLiteral("failure ") + text});
    }

    QTemporaryDir folder;
};

QString probed(const QString& path, const QString& entry)
{
    const ToolResult probe =
        runTool(QStringLiteral("ffprobe"),
                {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-select_streams"),
                 QStringLiteral("a"), QStringLiteral("-show_entries"), entry, QStringLiteral("-of"),
                 QStringLiteral("default=nk=1:nw=1"), path});
    return QString::fromUtf8(probe.output).trimmed();
}

} // namespace

TEST_F(FileRunTest, EveryKindOfAudioFileBecomesATrackInItsOwnRate)
{
    const struct {
        const char* ending;
        const char* rate;
    } kinds[] = {{"wav", "44100"},  {"aiff", "44100"}, {"aif", "44100"},  {"mp3", "44100"},
                 {"flac", "44100"}, {"aac", "44100"},  {"m4a", "44100"},  {"ogg", "44100"},
                 {"opus", "48000"}, {"wv", "44100"},   {"dsf", "352800"}, {"dff", "352800"}};
    for (const auto& kind : kinds) {
        SCOPED_TRACE(kind.ending);
        const QString name = QStringLiteral("Some Song.") + QLatin1String(kind.ending);
        decoderfiles::make(source(name), 20000);
        RunParts run;
        convert(run, source(name), OutputFlac, out(QLatin1String(kind.ending)));
        EXPECT_EQ(run.report.started, QStringList{QStringLiteral("1/1 Some Song")});
        ASSERT_EQ(run.report.results.size(), 1);
        EXPECT_TRUE(run.report.results[0].ok);
        const QString written = out(QLatin1String(kind.ending)) + QStringLiteral("/Album/01. Some Song.flac");
        EXPECT_EQ(probed(written, QStringLiteral("stream=sample_rate")), QLatin1String(kind.rate));
        EXPECT_TRUE(
            runTool(QStringLiteral("flac"), {QStringLiteral("-t"), QStringLiteral("-s"), written}).ok());
    }
}

TEST_F(FileRunTest, LosslessAudioKeepsEveryBitThroughEveryLosslessFormat)
{
    constexpr AudioFormat format{96000, 2, 24};
    const QList<qint32> samples = keepBits(decoderfiles::audio(30000, 2), 24);
    writeAll(source(QStringLiteral("Deep.wav")), waveFile(format, samples));
    for (const auto& [kind, ending] :
         {std::pair{OutputFlac, "flac"}, {OutputWav, "wav"}, {OutputAlac, "m4a"}}) {
        SCOPED_TRACE(ending);
        RunParts run;
        convert(run, source(QStringLiteral("Deep.wav")), kind, out(QLatin1String(ending)));
        const QString written =
            out(QLatin1String(ending)) + QStringLiteral("/Album/01. Deep.") + QLatin1String(ending);
        EXPECT_EQ(decodeWithFfmpeg(written), samples);
        EXPECT_EQ(probed(written, QStringLiteral("stream=sample_rate")), QStringLiteral("96000"));
    }
}

TEST_F(FileRunTest, TheTrackCarriesTheTagsTheCoverAndNoChecksum)
{
    decoderfiles::make(source(QStringLiteral("Song.wav")), 5000);
    QPixmap cover(12, 12);
    cover.fill(Qt::red);
    RunParts run;
    run.order.cover = cover;
    convert(run, source(QStringLiteral("Song.wav")), OutputFlac);
    const QString written = out(QStringLiteral("Album/01. Song.flac"));
    const QString tags = QString::fromUtf8(
        runTool(QStringLiteral("metaflac"), {QStringLiteral("--export-tags-to=-"), written}).output);
    for (const char* tag :
         {"TITLE=Song", "ARTIST=Test Artist", "ALBUM=Test Album", "TRACKNUMBER=1", "TRACKTOTAL=1"})
        EXPECT_TRUE(tags.contains(QLatin1String(tag), Qt::CaseInsensitive))
            << tag << " in " << tags.toStdString();
    EXPECT_FALSE(runTool(QStringLiteral("metaflac"),
                         {QStringLiteral("--list"), QStringLiteral("--block-type=PICTURE"), written})
                     .output.isEmpty());
    EXPECT_EQ(run.report.results[0].trackNumber, 1);
    EXPECT_EQ(run.report.results[0].title, QStringLiteral("Song"));
    EXPECT_EQ(run.report.results[0].errorSectors, 0U);
    EXPECT_EQ(run.report.results[0].suspectSectors, 0U);
    EXPECT_EQ(run.report.results[0].crcV1, 0U);
    EXPECT_EQ(run.report.results[0].crcV2, 0U);
    EXPECT_TRUE(run.report.results[0].frameWindow.isEmpty());
    EXPECT_TRUE(run.report.sectors.isEmpty());
}

TEST_F(FileRunTest, TheSameFileAgainGoesToAFolderOfItsOwn)
{
    decoderfiles::make(source(QStringLiteral("Song.wav")), 100);
    for (int i = 0; i < 3; ++i) {
        RunParts run;
        convert(run, source(QStringLiteral("Song.wav")), OutputWav);
    }
    speak(1);
    RunParts run;
    convert(run, source(QStringLiteral("Song.wav")), OutputWav);
    const QStringList made = QDir(out({})).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    EXPECT_EQ(made, (QStringList{QStringLiteral("Album"), QStringLiteral("Album - Copy"),
                                 QStringLiteral("Album - Copy (2)"), QStringLiteral("Album - コピー")}));
    for (const QString& name : made)
        EXPECT_TRUE(QFileInfo(out(name + QStringLiteral("/01. Song.wav"))).isFile()) << name.toStdString();
}

TEST_F(FileRunTest, DotsAtTheEndOfATitleAreKeptBeforeAnEnding)
{
    decoderfiles::make(source(QStringLiteral("dots ...wav")), 100);
    RunParts run;
    convert(run, source(QStringLiteral("dots ...wav")), OutputWav);
    EXPECT_TRUE(QFileInfo(out(QStringLiteral("Album/01. dots ...wav"))).isFile());
}

TEST_F(FileRunTest, AFileOfNoKnownKindIsRefused)
{
    for (const char* name : {"notes.txt", "noending", "film.mp4", "dot."}) {
        writeAll(source(QLatin1String(name)), "text");
        RunParts run;
        convert(run, source(QLatin1String(name)), OutputFlac);
        expectRefused(run, QStringLiteral("Unsupported file format: ") + source(QLatin1String(name)));
    }
    speak(1);
    RunParts run;
    convert(run, source(QStringLiteral("notes.txt")), OutputFlac);
    expectRefused(run,
                  QStringLiteral("対応していないファイル形式です: ") + source(QStringLiteral("notes.txt")));
    EXPECT_TRUE(QDir(out({})).isEmpty());
}

TEST_F(FileRunTest, AFileThatDoesNotOpenIsRefused)
{
    writeAll(source(QStringLiteral("junk.flac")), "this is no audio");
    for (const char* name : {"junk.flac", "missing.wav"}) {
        RunParts run;
        convert(run, source(QLatin1String(name)), OutputFlac);
        expectRefused(run, QStringLiteral("Cannot open the file (corrupted or unsupported codec): ")
                               + source(QLatin1String(name)));
    }
    speak(1);
    RunParts run;
    convert(run, source(QStringLiteral("junk.flac")), OutputFlac);
    expectRefused(run, QStringLiteral("ファイルを開けません（壊れている、または非対応のコーデックです）: ")
                           + source(QStringLiteral("junk.flac")));
}

TEST_F(FileRunTest, AFileWithoutSamplesIsRefused)
{
    writeAll(source(QStringLiteral("empty.wav")), waveFile({44100, 2, 16}, {}));
    RunParts run;
    convert(run, source(QStringLiteral("empty.wav")), OutputFlac);
    expectRefused(run, QStringLiteral("No decodable audio data: ") + source(QStringLiteral("empty.wav")));
    speak(1);
    RunParts japanese;
    convert(japanese, source(QStringLiteral("empty.wav")), OutputFlac);
    expectRefused(japanese, QStringLiteral("デコードできるデータがありませんでした: ")
                                + source(QStringLiteral("empty.wav")));
    EXPECT_TRUE(QDir(out({})).isEmpty());
}

TEST_F(FileRunTest, AnEncoderThatFailsIsAFailedTrackAndAnError)
{
    constexpr AudioFormat nineChannels{44100, 9, 16};
    writeAll(source(QStringLiteral("nine.wav")), waveFile(nineChannels, QList<qint32>(9 * 100, 1 << 20)));
    RunParts run;
    convert(run, source(QStringLiteral("nine.wav")), OutputFlac);
    ASSERT_EQ(run.report.results.size(), 1);
    EXPECT_FALSE(run.report.results[0].ok);
    EXPECT_EQ(run.report.results[0].errorSectors, allOnes);
    EXPECT_EQ(run.report.errors,
              QStringList{QStringLiteral("Encoding failed: ") + source(QStringLiteral("nine.wav"))});
    EXPECT_EQ(QDir(out(QStringLiteral("Album"))).entryList(QDir::Files), QStringList());

    speak(1);
    RunParts japanese;
    convert(japanese, source(QStringLiteral("nine.wav")), OutputFlac);
    EXPECT_EQ(japanese.report.errors,
              QStringList{QStringLiteral("エンコードに失敗しました: ") + source(QStringLiteral("nine.wav"))});
}

TEST_F(FileRunTest, AFullDiskFailsTheTrackAndLeavesNoFile)
{
    decoderfiles::make(source(QStringLiteral("Song.wav")), 200000);
    for (const OutputFormat format : {OutputFlac, OutputWav, OutputMp3, OutputAac, OutputAlac}) {
        QTemporaryDir target;
        RunParts run;
        {
            const FileSizeLimit limit(10000);
            convert(run, source(QStringLiteral("Song.wav")), format, target.path());
        }
        ASSERT_EQ(run.report.results.size(), 1);
        EXPECT_FALSE(run.report.results[0].ok) << format;
        EXPECT_TRUE(QDir(target.filePath(QStringLiteral("Album"))).entryList(QDir::Files).isEmpty())
            << format;
    }
}

TEST_F(FileRunTest, AHeaderThatPromisesFarTooMuchDoesNotTakeTheMemory)
{
    QByteArray flac;
    decoderfiles::make(source(QStringLiteral("Song.flac")), 3000);
    flac = contentOf(source(QStringLiteral("Song.flac")));
    // STREAMINFO's 36-bit count of frames ends 26 bytes into the file.
    for (int i = 22; i < 26; ++i)
        flac[i] = '\xFF';
    writeAll(source(QStringLiteral("Song.flac")), flac);
    RunParts run;
    convert(run, source(QStringLiteral("Song.flac")), OutputWav);
    ASSERT_EQ(run.report.results.size(), 1);
    EXPECT_TRUE(run.report.results[0].ok);
    EXPECT_EQ(audioOfWave(out(QStringLiteral("Album/01. Song.wav"))).size(), 3000 * 4);
}

// A header may claim 2^63 bytes, which are all delivered, as silence.
TEST_F(FileRunTest, AudioBeyondTheMemoryOfTheMachineIsAFailedTrack)
{
    const auto convertDff = [this](RunParts& run, quint64 frames) {
        QByteArray dff =
            decoderfiles::dff(decoderfiles::dffProperties(2822400, 1), decoderfiles::bits(64, 1));
        dff.replace(dff.size() - 64 - 8, 8, big(frames));
        writeAll(source(QStringLiteral("Long.dff")), dff);
        convert(run, source(QStringLiteral("Long.dff")), OutputWav);
    };
    // Three quarters of it may be samples of four bytes each.
    pretendPhysicalMemory(4 * 20000 * 4 / 3);
    RunParts fitting;
    convertDff(fitting, 19999);
    RunParts tooLong;
    convertDff(tooLong, 20001);
    RunParts endless;
    convertDff(endless, quint64{1} << 63);
    pretendPhysicalMemory(0);

    ASSERT_EQ(fitting.report.results.size(), 1);
    EXPECT_TRUE(fitting.report.results[0].ok);
    for (const RunParts* run : {&tooLong, &endless}) {
        ASSERT_EQ(run->report.results.size(), 1);
        EXPECT_FALSE(run->report.results[0].ok);
        EXPECT_EQ(run->report.results[0].errorSectors, allOnes);
        EXPECT_EQ(run->report.errors,
                  QStringList{QStringLiteral("Encoding failed: ") + source(QStringLiteral("Long.dff"))});
    }
}

TEST_F(FileRunTest, ARunThatIsAskedToStopWritesNothing)
{
    decoderfiles::make(source(QStringLiteral("Song.wav")), 5000);
    RunParts run;
    run.report.stop = true;
    convert(run, source(QStringLiteral("Song.wav")), OutputWav);
    EXPECT_TRUE(run.report.said.isEmpty());
    EXPECT_TRUE(QDir(out({})).isEmpty());
}

TEST_F(FileRunTest, ATrackIsSaidInOrderAndItsFailureBehindIt)
{
    decoderfiles::make(source(QStringLiteral("Song.wav")), 5000);
    RunParts run;
    convert(run, source(QStringLiteral("Song.wav")), OutputWav);
    const QStringList words{QStringLiteral("begins 1/1 Song"), QStringLiteral("ends 1")};
    EXPECT_EQ(run.report.said, words);
    RunParts failing;
    {
        const FileSizeLimit limit(100);
        convert(failing, source(QStringLiteral("Song.wav")), OutputWav);
    }
    EXPECT_EQ(failing.report.said, words
                                       + QStringList{QStringLiteral("failure Encoding failed: ")
                                                     + source(QStringLiteral("Song.wav"))});
}

TEST_F(FileRunTest, AStopEndsTheDecodingBetweenTwoBlocks)
{
    decoderfiles::make(source(QStringLiteral("Song.wav")), 200000);
    RunParts run;
    int questions = 0;
    run.report.stopWhen = [&questions] { return ++questions > 3; };
    convert(run, source(QStringLiteral("Song.wav")), OutputWav);
    EXPECT_EQ(questions, 4 + 1) << "the last in front of the track";
    EXPECT_TRUE(run.report.said.isEmpty());
}
