#include "base/ByteOrder.h"
#include "codecs/EncoderOptions.h"
#include "codecs/EncoderRun.h"
#include "support/AudioMaker.h"
#include "support/Tool.h"

#include <algorithm>
#include <cmath>

class Mp3EncoderTest : public EncoderTest {
protected:
    ~Mp3EncoderTest() override { encoderOptions = EncoderOptions(); }

    QByteArray mp3(const AudioFormat& format, const QList<qint32>& samples)
    {
        return encode(Mp3EncoderId, file("track.mp3"), format, samples);
    }

    QByteArray probed(const char* entries)
    {
        return runTool("ffprobe", {"-v", "error", "-count_packets", "-show_entries",
                                   QString::fromLatin1(entries), "-of", "csv=p=0", file("track.mp3")})
            .output.trimmed();
    }

    // Interleaved 16-bit samples, with the encoder's delay and padding cut off.
    QList<qint16> decoded()
    {
        const auto tool = runTool(
            "ffmpeg", {"-v", "error", "-y", "-i", file("track.mp3"), "-f", "s16le", file("decoded.raw")});
        EXPECT_TRUE(tool.ok()) << tool.errors.toStdString();
        const QByteArray bytes = readAll(file("decoded.raw"));
        QList<qint16> samples;
        for (qsizetype i = 0; i + 1 < bytes.size(); i += 2)
            samples.append(byteorder::readLittle<qint16>(bytes.constData() + i));
        return samples;
    }

    // Two sines of their own height and pitch.
    static QList<qint32> twoSines(quint64 frames, double leftHeight, double rightHeight)
    {
        const QList<qint32> left = audiomaker::sine(frames, 1, 1000, 44100, leftHeight);
        const QList<qint32> right = audiomaker::sine(frames, 1, 1700, 44100, rightHeight);
        QList<qint32> both;
        for (qsizetype i = 0; i < left.size(); ++i)
            both << left[i] << right[i];
        return both;
    }

    // Highest value of one channel in the middle half, as a part of full scale.
    static double height(const QList<qint16>& samples, int channels, int channel)
    {
        int highest = 0;
        const qsizetype frames = samples.size() / channels;
        for (qsizetype frame = frames / 4; frame < frames * 3 / 4; ++frame)
            highest = std::max(highest, std::abs(int{samples[frame * channels + channel]}));
        return highest / 32768.0;
    }
};

// The places of the tag frame's fields behind the marker, in bytes.
constexpr qsizetype frameCountField = 8;
constexpr qsizetype delayField = 141;

TEST_F(Mp3EncoderTest, RateIsConstantAt320)
{
    mp3({44100, 2, 16}, audiomaker::sine(44100, 2, 440, 44100));
    EXPECT_EQ(probed("stream=codec_name,sample_rate,channels"), "mp3,44100,2");
    const QList<QByteArray> lines = probed("packet=size").split('\n');
    int packets = 0;
    // 144 * 320000 / 44100 = 1044.9: a frame has 1044 bytes, or 1045 with padding.
    for (const QByteArray& line : lines) {
        if (line.isEmpty()) // behind a packet with side data
            continue;
        const int size = line.split(',').first().toInt();
        EXPECT_TRUE(size == 1044 || size == 1045) << line.toStdString();
        ++packets;
    }
    EXPECT_GE(packets, 39); // 44100 / 1152 = 38.3
}

TEST_F(Mp3EncoderTest, VariableRateIsTakenWhenAskedFor)
{
    encoderOptions.mp3UseVbr = true;
    const QByteArray variable = mp3({44100, 2, 16}, audiomaker::sine(88200, 2, 440, 44100));
    EXPECT_EQ(variable.mid(36, 4), "Xing");
    encoderOptions.mp3UseVbr = false;
    const QByteArray constant = mp3({44100, 2, 16}, audiomaker::sine(88200, 2, 440, 44100));
    EXPECT_EQ(constant.mid(36, 4), "Info");
    EXPECT_LT(variable.size(), constant.size());
}

TEST_F(Mp3EncoderTest, TheTagFrameTellsTheTrueLengthEvenOfAShortSource)
{
    for (const qint32 frames : {1, 100, 1152, 5000, 100000}) {
        const QByteArray bytes =
            mp3({44100, 2, 16}, audiomaker::sine(static_cast<quint64>(frames), 2, 440, 44100));
        // Four bytes of header and 32 of side information go before the marker.
        const qsizetype marker = 36;
        ASSERT_EQ(bytes.mid(marker, 4), "Info") << frames;
        const auto counted = byteorder::readBig<quint32>(bytes.constData() + marker + frameCountField);
        EXPECT_EQ(QByteArray::number(counted), probed("stream=nb_read_packets")) << frames;

        const auto* delays = reinterpret_cast<const quint8*>(bytes.constData()) + marker + delayField;
        const qint32 delay = (delays[0] << 4) | (delays[1] >> 4);
        const qint32 padding = ((delays[1] & 15) << 8) | delays[2];
        EXPECT_EQ(static_cast<qint32>(counted) * 1152 - delay - padding, frames);
    }
}

TEST_F(Mp3EncoderTest, DecodedLengthIsThatOfTheSource)
{
    mp3({44100, 2, 16}, audiomaker::sine(44100, 2, 440, 44100));
    const auto tool = runTool("lame", {"--quiet", "--decode", file("track.mp3"), file("decoded.wav")});
    ASSERT_TRUE(tool.ok()) << tool.errors.toStdString();
    EXPECT_EQ(runTool("soxi", {"-s", file("decoded.wav")}).output.trimmed(), "44100");
}

TEST_F(Mp3EncoderTest, ChannelsKeepTheirSideAndTheirHeight)
{
    mp3({44100, 2, 16}, twoSines(44100, 0.5, 0.125));
    const QList<qint16> samples = decoded();
    EXPECT_NEAR(height(samples, 2, 0), 0.5, 0.01);
    EXPECT_NEAR(height(samples, 2, 1), 0.125, 0.01);
}

TEST_F(Mp3EncoderTest, MonoGivesAMonoFile)
{
    mp3({44100, 1, 24}, audiomaker::sine(44100, 1, 440, 44100));
    EXPECT_EQ(probed("stream=channels"), "1");
    EXPECT_NEAR(height(decoded(), 1, 0), 0.5, 0.01);
}

TEST_F(Mp3EncoderTest, OnlyTheFirstTwoOfManyChannelsAreTaken)
{
    const QList<qint32> front = twoSines(44100, 0.5, 0.25);
    QList<qint32> surround;
    for (qsizetype i = 0; i < front.size(); i += 2)
        surround << front[i] << front[i + 1] << 0x7FFFFFFF << -0x7FFFFFFF << 0x7FFFFFFF;
    const QByteArray fromFive = mp3({44100, 5, 16}, surround);
    EXPECT_EQ(probed("stream=channels"), "2");
    EXPECT_EQ(fromFive, mp3({44100, 2, 16}, front));
}

TEST_F(Mp3EncoderTest, ResampledBlocksGiveTheSameBytesAsOne)
{
    for (const quint32 rate : {96000u, 11000u}) {
        const AudioFormat format{rate, 2, 24};
        const QList<qint32> samples = audiomaker::noise(2 * 60001, 50);
        const QByteArray whole = mp3(format, samples);
        EXPECT_EQ(encodeInPieces(Mp3EncoderId, file("pieces.mp3"), format, samples, {1, 999, 16385}), whole)
            << rate;
    }
}

TEST_F(Mp3EncoderTest, AHighRateComesOutAtOneOfTheFormat)
{
    mp3({96000, 2, 24}, audiomaker::sine(96000, 2, 440, 96000));
    EXPECT_EQ(probed("stream=sample_rate"), "48000");
}

TEST_F(Mp3EncoderTest, FramesCountWhenTheSampleListIsLonger)
{
    const QList<qint32> samples = audiomaker::noise(8000, 51);
    const QByteArray expected = mp3({44100, 2, 16}, samples.mid(0, 6000));
    const auto encoder = makeEncoder(Mp3EncoderId);
    ASSERT_TRUE(encoder->open(toPath(file("long.mp3")), {44100, 2, 16}));
    ASSERT_TRUE(encoder->write({samples, 3000}));
    ASSERT_TRUE(encoder->close());
    EXPECT_EQ(readAll(file("long.mp3")), expected);
}
