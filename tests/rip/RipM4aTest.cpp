#include <gtest/gtest.h>

#include "RunRecorder.h"
#include "codecs/IAudioEncoder.h"
#include "support/Tool.h"

#include <QImage>
#include <QRandomGenerator>

// What a rip makes of a track in the two kinds of MPEG-4, tags and cover included.
class RipM4a : public ::testing::TestWithParam<OutputFormat> {
protected:
    static constexpr int sectors = 200;
    static constexpr int framesPerSector = 588;

    void SetUp() override
    {
        ImageDescription description;
        description.tracks = {{0, QStringLiteral("One")}, {sectors, QStringLiteral("Two")}};
        audio = makeAudio(2 * sectors, 7);
        const QString cue = writeImage(folder.path(), description, audio);
        run.rip(cue, GetParam(), folder.filePath(QStringLiteral("out")), largeCover());
        ASSERT_EQ(run.results.size(), 2);
        ASSERT_TRUE(run.results[0].ok && run.results[1].ok);
    }

    // Noise, so that its JPEG outgrows any room that a file might keep for tags.
    static QPixmap largeCover()
    {
        QImage image(500, 500, QImage::Format_RGB32);
        QRandomGenerator random(5);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                image.setPixel(x, y, random.generate());
        }
        return QPixmap::fromImage(image);
    }

    QByteArray probed(const char* entries, const char* stream) const
    {
        const ToolResult tool = runTool("ffprobe", {"-v", "error", "-select_streams", stream, "-show_entries",
                                                    entries, "-of", "default=nw=1", track});
        EXPECT_TRUE(tool.ok()) << tool.errors.toStdString();
        return tool.output.trimmed();
    }

    static QByteArray decoded(const QString& path)
    {
        const ToolResult tool =
            runTool("ffmpeg", {"-v", "error", "-xerror", "-i", path, "-map", "0:a", "-f", "s16le", "-"});
        EXPECT_TRUE(tool.ok());
        EXPECT_EQ(tool.errors, "");
        return tool.output;
    }

    QTemporaryDir folder;
    QByteArray audio;
    RunRecorder run;
    const QString track = folder.filePath(QStringLiteral("out/02. Two.m4a"));
};

TEST_P(RipM4a, TagsAndCoverStandInTheFile)
{
    const QByteArray tags = probed("format_tags", "a");
    for (const char* line : {"TAG:title=Two", "TAG:artist=Test Artist", "TAG:album=Test Album", "TAG:date=1998",
                             "TAG:track=2/2", "TAG:disc=1/2", "TAG:major_brand=M4A "})
        EXPECT_TRUE(tags.contains(line)) << line;
    EXPECT_EQ(probed("stream=codec_name,width,height", "v"), "codec_name=mjpeg\nwidth=500\nheight=500");
}

TEST_P(RipM4a, TaggingLeavesTheAudioAndItsLengthAlone)
{
    const qint64 frames = qint64{sectors} * framesPerSector;
    EXPECT_EQ(probed("stream=duration_ts,codec_name,start_pts", "a"),
              (GetParam() == OutputAac ? "codec_name=aac" : "codec_name=alac")
                  + QByteArray("\nstart_pts=0\nduration_ts=") + QByteArray::number(frames));

    QList<qint32> samples;
    const QByteArray second = audio.mid(sectors * qsizetype{RAW_SECTOR_BYTES});
    for (qsizetype i = 0; i + 1 < second.size(); i += 2)
        samples.append(qFromLittleEndian<qint16>(second.constData() + i) * 65536);
    const QString plain = folder.filePath(QStringLiteral("plain.m4a"));
    const auto encoder = makeEncoder(GetParam() == OutputAac ? AacEncoderId : AlacEncoderId);
    ASSERT_TRUE(encoder->open(plain.toStdString(), AudioFormat()));
    ASSERT_TRUE(encoder->write({samples, static_cast<quint64>(frames)}));
    ASSERT_TRUE(encoder->close());
    EXPECT_EQ(decoded(track), decoded(plain));
    if (GetParam() == OutputAlac) {
        EXPECT_EQ(decoded(track), second);
    }
}

INSTANTIATE_TEST_SUITE_P(Codecs, RipM4a, ::testing::Values(OutputAac, OutputAlac));
