// The gain tags that a run writes at its end, once they are asked for.

#include "codecs/EncoderOptions.h"

#include <gtest/gtest.h>

#include "RunRecorder.h"
#include "codecs/DecoderFiles.h"
#include "rip/RunGuard.h"
#include "support/SimulatedDrive.h"
#include "support/Tool.h"

#include <QDir>
#include <QRegularExpression>

#include <cmath>
#include <numbers>

namespace {

constexpr int trackSectors = 150; // two seconds

/// A 997 Hz tone of the same height in both channels, as a disc holds it.
QByteArray tone(double height, int sectors)
{
    QByteArray bytes;
    for (int frame = 0; frame < sectors * 588; ++frame) {
        const double value = height * std::sin(2 * std::numbers::pi * 997 * frame / 44100);
        const auto sample = static_cast<qint16>(std::lround(value * 32767));
        for (int channel = 0; channel < 2; ++channel) {
            bytes.append(static_cast<char>(sample & 0xFF));
            bytes.append(static_cast<char>(sample >> 8));
        }
    }
    return bytes;
}

class ReplayGainRun : public ::testing::Test {
protected:
    void SetUp() override { encoderOptions.replayGainEnabled = true; }
    void TearDown() override { encoderOptions.replayGainEnabled = false; }

    QString out(const QString& name = {}) const { return folder.filePath(QStringLiteral("out/") + name); }

    QString image()
    {
        ImageDescription description;
        description.tracks = {{0, QStringLiteral("Loud")}, {trackSectors, QStringLiteral("Soft")}};
        return writeImage(folder.path(), description, tone(0.5, trackSectors) + tone(0.25, trackSectors));
    }

    /// The value of a tag of a FLAC file, by metaflac; empty when it has none.
    static QString tag(const QString& path, const char* key)
    {
        const ToolResult result =
            runTool(QStringLiteral("metaflac"), {QStringLiteral("--show-tag=") + QLatin1String(key), path});
        EXPECT_TRUE(result.ok()) << result.errors.toStdString();
        return QString::fromUtf8(result.output).section(QLatin1Char('='), 1).trimmed();
    }

    /// The gain to -18 LUFS of a file, by FFmpeg's meter.
    static double measuredGain(const QString& path)
    {
        const QString report = QString::fromUtf8(
            runTool(QStringLiteral("ffmpeg"),
                    {QStringLiteral("-nostats"), QStringLiteral("-hide_banner"), QStringLiteral("-i"), path,
                     QStringLiteral("-filter_complex"), QStringLiteral("ebur128"), QStringLiteral("-f"),
                     QStringLiteral("null"), QStringLiteral("-")})
                .errors);
        // A filter that is set up anew for the format of the first frame reports
        // an empty measurement in front.
        const QString summary = report.mid(report.lastIndexOf(QStringLiteral("Integrated loudness:")));
        const auto match = QRegularExpression(QStringLiteral("I:\\s+(-?[\\d.]+) LUFS")).match(summary);
        EXPECT_TRUE(match.hasMatch()) << report.toStdString();
        return -18.0 - match.captured(1).toDouble();
    }

    static double decibels(const QString& text)
    {
        EXPECT_TRUE(text.endsWith(QStringLiteral(" dB"))) << text.toStdString();
        EXPECT_TRUE(text.startsWith(QLatin1Char('+')) || text.startsWith(QLatin1Char('-')))
            << text.toStdString();
        return text.chopped(3).toDouble();
    }

    static void expectAlbumOfTwo(const QString& loud, const QString& soft)
    {
        EXPECT_NEAR(decibels(tag(loud, "REPLAYGAIN_TRACK_GAIN")), measuredGain(loud), 0.15);
        EXPECT_NEAR(decibels(tag(soft, "REPLAYGAIN_TRACK_GAIN")), measuredGain(soft), 0.15);
        // Half of the programme has a quarter of the power: the mean of both.
        const double meanOfBoth = -10 * std::log10((1 + 0.25) / 2);
        EXPECT_NEAR(decibels(tag(loud, "REPLAYGAIN_ALBUM_GAIN")),
                    decibels(tag(loud, "REPLAYGAIN_TRACK_GAIN")) + meanOfBoth, 0.02);
        EXPECT_EQ(tag(soft, "REPLAYGAIN_ALBUM_GAIN"), tag(loud, "REPLAYGAIN_ALBUM_GAIN"));
        EXPECT_NEAR(tag(loud, "REPLAYGAIN_TRACK_PEAK").toDouble(), 0.5, 0.001);
        EXPECT_NEAR(tag(soft, "REPLAYGAIN_TRACK_PEAK").toDouble(), 0.25, 0.001);
        EXPECT_EQ(tag(soft, "REPLAYGAIN_ALBUM_PEAK"), tag(loud, "REPLAYGAIN_TRACK_PEAK"));
        EXPECT_TRUE(runTool(QStringLiteral("flac"), {QStringLiteral("-t"), QStringLiteral("-s"), loud}).ok());
    }

    QTemporaryDir folder;
};

} // namespace

TEST_F(ReplayGainRun, AnImageIsOneAlbum)
{
    RunRecorder run;
    run.rip(image(), OutputFlac, out());
    expectAlbumOfTwo(out(QStringLiteral("01. Loud.flac")), out(QStringLiteral("02. Soft.flac")));
    EXPECT_EQ(tag(out(QStringLiteral("01. Loud.flac")), "TITLE"), QStringLiteral("Loud")) << "the tags stay";
}

TEST_F(ReplayGainRun, ADiscIsOneAlbum)
{
    SimulatedDrive disc;
    disc.audio = tone(0.5, trackSectors) + tone(0.25, trackSectors);
    disc.tracks = {{0}, {trackSectors}};
    const DrivePlatformOverride platform(disc);
    RunRecorder run;
    run.ripDisc(out(), 20, OutputFlac);
    expectAlbumOfTwo(out(QStringLiteral("01. Track 1.flac")), out(QStringLiteral("02. Track 2.flac")));
}

TEST_F(ReplayGainRun, AnAudioFileGetsNoAlbumValues)
{
    const QString source =
        writeFile(folder.path(), QStringLiteral("Song.wav"), wrapInWave(tone(0.25, trackSectors)));
    RunRecorder run;
    run.worker.configure(nullptr, DiscToc(), out(), QString(), QString(), QString(), QPixmap(), QString(), 1,
                         1, 300, OutputFlac, source, 20);
    run.worker.run();
    const QString made = out(QFileInfo(folder.path()).fileName() + QStringLiteral("/01. Song.flac"));
    EXPECT_NEAR(decibels(tag(made, "REPLAYGAIN_TRACK_GAIN")), measuredGain(made), 0.15);
    EXPECT_NEAR(tag(made, "REPLAYGAIN_TRACK_PEAK").toDouble(), 0.25, 0.001);
    EXPECT_EQ(tag(made, "REPLAYGAIN_ALBUM_GAIN"), QString());
    EXPECT_EQ(tag(made, "REPLAYGAIN_ALBUM_PEAK"), QString());
}

TEST_F(ReplayGainRun, ATrackThatFailedIsNoPartOfTheAlbum)
{
    const QString cue = image();
    ASSERT_TRUE(QDir().mkpath(out(QStringLiteral("02. Soft.flac/taken"))));
    RunRecorder run;
    run.rip(cue, OutputFlac, out());
    const QString loud = out(QStringLiteral("01. Loud.flac"));
    EXPECT_EQ(tag(loud, "REPLAYGAIN_ALBUM_GAIN"), tag(loud, "REPLAYGAIN_TRACK_GAIN"));
}

TEST_F(ReplayGainRun, SilenceGetsTheGainOfTheLowestLoudness)
{
    ImageDescription description;
    description.tracks = {{0, QStringLiteral("Nothing")}};
    RunRecorder run;
    run.rip(writeImage(folder.path(), description, QByteArray(trackSectors * 2352, '\0')), OutputFlac, out());
    EXPECT_EQ(tag(out(QStringLiteral("01. Nothing.flac")), "REPLAYGAIN_TRACK_GAIN"),
              QStringLiteral("+52.00 dB"));
    EXPECT_EQ(tag(out(QStringLiteral("01. Nothing.flac")), "REPLAYGAIN_TRACK_PEAK"),
              QStringLiteral("0.000000"));
}

// Measuring an album takes its time; the machine may not go to sleep over it.
TEST_F(ReplayGainRun, AnAlbumsGainIsWrittenUnderTheGuard)
{
    struct LookingGuard : RunGuard {
        void begin() override {}
        void end() override { seen = tag(file, "REPLAYGAIN_ALBUM_GAIN"); }
        QString file;
        QString seen;
    } guard;
    guard.file = out(QStringLiteral("01. Loud.flac"));
    const RunGuardOverride inPlace(guard);
    RunRecorder run;
    run.rip(image(), OutputFlac, out());
    EXPECT_NE(guard.seen, QString());
}

TEST_F(ReplayGainRun, WithoutTheSwitchThereAreNoGainTags)
{
    encoderOptions.replayGainEnabled = false;
    RunRecorder run;
    run.rip(image(), OutputFlac, out());
    const ToolResult list = runTool(QStringLiteral("metaflac"), {QStringLiteral("--export-tags-to=-"),
                                                                 out(QStringLiteral("01. Loud.flac"))});
    EXPECT_FALSE(list.output.toUpper().contains("REPLAYGAIN"));
}
