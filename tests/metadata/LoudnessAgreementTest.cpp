// The meter against FFmpeg's ebur128 filter, over the same 32-bit samples.

#include "metadata/LoudnessMeter.h"

#include "support/AudioMaker.h"
#include "support/Tool.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

namespace {

struct Signal {
    const char* name;
    quint32 rate;
    int channels;
    QList<qint32> samples;
};

double decibels(double level)
{
    return std::pow(10.0, level / 20.0);
}

QList<qint32> tone(quint32 rate, int channels, double seconds, double level)
{
    return audiomaker::sine(static_cast<quint64>(rate * seconds), channels, 997, rate, decibels(level));
}

QList<qint32> silence(quint32 rate, int channels, double seconds)
{
    return QList<qint32>(static_cast<qsizetype>(rate * seconds) * channels, 0);
}

QList<qint32> softNoise(quint32 rate, int channels, double seconds, quint32 seed)
{
    const auto frames = static_cast<quint64>(rate * seconds);
    QList<qint32> samples = audiomaker::noise(frames * static_cast<quint64>(channels), seed);
    for (qint32& sample : samples)
        sample /= 16;
    return samples;
}

// Decaying notes over a slow swell, different in each channel.
QList<qint32> music(quint32 rate, int channels, double seconds)
{
    std::mt19937 random(17);
    std::uniform_real_distribution<double> pick(0.0, 1.0);
    const auto frames = static_cast<qsizetype>(rate * seconds);
    QList<qint32> samples;
    samples.reserve(frames * channels);
    std::vector<double> pitch(static_cast<std::size_t>(channels));
    std::vector<double> phase(static_cast<std::size_t>(channels));
    for (qsizetype frame = 0; frame < frames; ++frame) {
        const qsizetype sinceNote = frame % (rate / 4);
        const double swell = 0.05 + 0.4 * std::pow(std::sin(0.2 * static_cast<double>(frame) / rate), 2);
        const double decay = std::exp(-5.0 * static_cast<double>(sinceNote) / rate);
        for (std::size_t channel = 0; channel < pitch.size(); ++channel) {
            if (sinceNote == 0)
                pitch[channel] = 55 * std::pow(2.0, 6 * pick(random));
            phase[channel] += 2 * std::numbers::pi * pitch[channel] / rate;
            const double value =
                std::sin(phase[channel]) + 0.3 * std::sin(3 * phase[channel]) + 0.05 * pick(random);
            samples.append(static_cast<qint32>(2147483647.0 * 0.7 * swell * decay * value));
        }
    }
    return samples;
}

double measure(const Signal& signal)
{
    LoudnessMeter meter(signal.rate, signal.channels);
    meter.add(signal.samples.constData(), static_cast<quint64>(signal.samples.size() / signal.channels));
    meter.finish();
    return meter.gatedLoudness();
}

// The last "I:" of the log is the one of its summary.
double measureByFfmpeg(const Signal& signal)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("samples.raw");
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(reinterpret_cast<const char*>(signal.samples.constData()), signal.samples.size() * 4);
    file.close();
    const ToolResult tool = runTool("ffmpeg", {"-nostats", "-f", "s32le", "-ar", QString::number(signal.rate),
                                               "-ac", QString::number(signal.channels), "-i", path, "-af",
                                               "ebur128=framelog=verbose", "-f", "null", "-"});
    EXPECT_TRUE(tool.ok()) << tool.errors.toStdString();
    const QString log = QString::fromUtf8(tool.errors);
    const qsizetype summary = log.lastIndexOf("Summary:");
    const QRegularExpression integrated("I:\\s+(-?[0-9.]+) LUFS");
    const QRegularExpressionMatch match = integrated.match(log, std::max<qsizetype>(summary, 0));
    EXPECT_TRUE(summary >= 0 && match.hasMatch()) << tool.errors.toStdString();
    return match.captured(1).toDouble();
}

QList<Signal> signalsAt(quint32 rate, int channels)
{
    QList<Signal> signals_;
    for (const double level : {-1.0, -6.0, -23.0, -40.0, -60.0})
        signals_.append({"tone", rate, channels, tone(rate, channels, 4, level)});
    signals_.append({"noise", rate, channels, softNoise(rate, channels, 4, 1)});
    signals_.append({"silence", rate, channels, silence(rate, channels, 2)});
    signals_.append({"music", rate, channels, music(rate, channels, 12)});
    // The middle alone counts: with 16 of its seconds to 4 quiet ones, the mean lies 0.9
    // below it, and the ends 12.1 below that. With 8 to 12 the mean lies 3.7 below it,
    // the ends 9.3 below that, and all of it counts.
    signals_.append(
        {"steps", rate, channels,
         tone(rate, channels, 2, -36) + tone(rate, channels, 16, -23) + tone(rate, channels, 2, -36)});
    signals_.append(
        {"long steps", rate, channels,
         tone(rate, channels, 6, -36) + tone(rate, channels, 8, -23) + tone(rate, channels, 6, -36)});
    signals_.append({"pauses", rate, channels,
                     tone(rate, channels, 3, -20) + silence(rate, channels, 5)
                         + softNoise(rate, channels, 2, 7) + silence(rate, channels, 3)});
    return signals_;
}

} // namespace

class LoudnessAgreement : public ::testing::TestWithParam<std::tuple<quint32, int>> {};

TEST_P(LoudnessAgreement, WithinATenthOfALoudnessUnit)
{
    const auto [rate, channels] = GetParam();
    for (const Signal& signal : signalsAt(rate, channels))
        EXPECT_NEAR(measure(signal), measureByFfmpeg(signal), 0.1) << signal.name;
}

INSTANTIATE_TEST_SUITE_P(Rates, LoudnessAgreement,
                         ::testing::Combine(::testing::Values(44100u, 48000u, 96000u),
                                            ::testing::Values(1, 2)));

// The first two test signals of the EBU's technical paper 3341, and the third,
// whose quiet ends are gated.
TEST(LoudnessOfStandardSignals, StereoToneMeasuresItsLevel)
{
    for (const quint32 rate : {44100u, 48000u, 96000u}) {
        EXPECT_NEAR(measure({"", rate, 2, tone(rate, 2, 20, -23)}), -23.0, 0.1) << rate;
        EXPECT_NEAR(measure({"", rate, 2, tone(rate, 2, 20, -33)}), -33.0, 0.1) << rate;
        const QList<qint32> quiet = tone(rate, 2, 10, -36);
        EXPECT_NEAR(measure({"", rate, 2, quiet + tone(rate, 2, 60, -23) + quiet}), -23.0, 0.1) << rate;
    }
}

TEST(LoudnessOfStandardSignals, OneChannelCountsHalfOfTwo)
{
    EXPECT_NEAR(measure({"", 48000, 1, tone(48000, 1, 5, -23)}), -23.0 - 10 * std::log10(2.0), 0.1);
}
