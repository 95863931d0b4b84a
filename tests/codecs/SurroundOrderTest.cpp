#include "codecs/DecoderFiles.h"
#include "support/Tool.h"

#include <cmath>
#include <complex>
#include <numbers>
#include <tuple>

// A tone of its own in every channel of a WAVE file, through encoders that are not
// ours: each has to come out of the channel that it went into.

using SurroundCase = std::tuple<const char*, quint16>; // command of an encoder, channels

class SurroundOrderTest : public EncoderTest, public ::testing::WithParamInterface<SurroundCase> {
protected:
    static constexpr quint32 rate = 48000;
    static constexpr qsizetype frames = rate;

    /// The fourth of six or more is for low tones alone.
    static double hertzOf(int channel) { return channel == 3 ? 60.0 : 300.0 + 100.0 * channel; }

    /// Front, centre, low, back, back centre and sides are the bits 0, 1; 2; 3; 4, 5; 8; 9, 10.
    static quint32 speakersOf(quint16 channels)
    {
        constexpr quint32 masks[] = {0, 0x4, 0x3, 0x7, 0x33, 0x37, 0x3F, 0x70F, 0x63F};
        return masks[channels];
    }

    static QByteArray tones(quint16 channels)
    {
        constexpr double height = 0.1 * 2147483648.0;
        constexpr qsizetype maskOffset = 40;
        QList<qint32> samples;
        for (qsizetype i = 0; i < frames; ++i) {
            for (int channel = 0; channel < channels; ++channel)
                samples.append(static_cast<qint32>(
                    height
                    * std::sin(2 * std::numbers::pi * hertzOf(channel) * static_cast<double>(i) / rate)));
        }
        return waveFile({rate, channels, 16}, samples).replace(maskOffset, 4, little(speakersOf(channels)));
    }

    /// The height of a tone in one channel, over whole periods in the middle.
    static double heightOf(double hertz, const Decoded& decoded, int channel)
    {
        const int channels = decoded.format.channels;
        std::complex<double> sum = 0;
        for (qsizetype i = frames / 4; i < frames * 3 / 4; ++i)
            sum += decoded.samples[i * channels + channel] / 2147483648.0
                   * std::polar(1.0, -2 * std::numbers::pi * hertz * static_cast<double>(i) / rate);
        return 2 * std::abs(sum) / (static_cast<double>(frames) / 2);
    }
};

TEST_P(SurroundOrderTest, EveryToneStaysInItsChannel)
{
    const auto [command, channels] = GetParam();
    writeAll(file("s.wav"), tones(channels));
    QStringList words = QString::fromLatin1(command).split(QLatin1Char(' '));
    const QString made = file("a.") + words.takeLast();
    words.replaceInStrings(QStringLiteral("IN"), file("s.wav")).replaceInStrings(QStringLiteral("OUT"), made);
    const ToolResult encoded = runTool(words.takeFirst(), words);
    ASSERT_TRUE(encoded.ok()) << encoded.errors.toStdString();
    const Decoded decoded = decode(made);
    ASSERT_EQ(decoded.format, (AudioFormat{rate, channels, 16}));
    ASSERT_EQ(decoded.frames(), static_cast<quint64>(frames));
    for (int channel = 0; channel < channels; ++channel) {
        for (int tone = 0; tone < channels; ++tone) {
            EXPECT_NEAR(heightOf(hertzOf(tone), decoded, channel), tone == channel ? 0.1 : 0.0, 0.03)
                << "tone of " << tone << " in " << channel;
        }
    }
}

static std::string nameOfCase(const ::testing::TestParamInfo<SurroundCase>& instance)
{
    const std::string command = std::get<0>(instance.param);
    return command.substr(0, command.find(' ')) + command.substr(command.rfind(' ') + 1)
           + std::to_string(std::get<1>(instance.param));
}

INSTANTIATE_TEST_SUITE_P(
    All, SurroundOrderTest,
    ::testing::Combine(::testing::Values("oggenc -Q -q 8 -o OUT IN ogg", "opusenc --quiet IN OUT opus",
                                         "ffmpeg -v error -i IN -c:a libvorbis -q:a 8 OUT ogg",
                                         "ffmpeg -v error -i IN -c:a libopus -mapping_family 1 OUT opus"),
                       ::testing::Range<quint16>(1, 9)),
    nameOfCase);
