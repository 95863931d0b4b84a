#include "codecs/DecoderRun.h"

#include "support/Tool.h"

#include <QFile>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>

quint64 Decoded::frames() const
{
    return std::accumulate(blocks.begin(), blocks.end(), quint64{0});
}

Decoded decode(IAudioDecoder& decoder, const QString& name)
{
    Decoded result;
    result.opened = decoder.open(toPath(name));
    if (!result.opened)
        return result;
    result.format = decoder.format();
    result.total = decoder.totalFrames();
    while (const auto block = decoder.read()) {
        EXPECT_EQ(static_cast<quint64>(block->samples.size()), block->frames * result.format.channels);
        EXPECT_LT(block->samples.size() * 4, 16 * 1024 * 1024);
        result.samples += block->samples;
        result.blocks.append(block->frames);
    }
    EXPECT_EQ(decoder.format(), result.format);
    decoder.close();
    return result;
}

Decoded decode(const QString& name)
{
    const auto decoder = makeDecoder(toPath(name));
    return decoder ? decode(*decoder, name) : Decoded();
}

void writeAll(const QString& name, const QByteArray& bytes)
{
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << name.toStdString();
    ASSERT_EQ(file.write(bytes), bytes.size());
}

QByteArray littleChunk(const char* id, const QByteArray& body)
{
    return id + little(static_cast<quint32>(body.size())) + body;
}

QByteArray bigChunk(const char* id, const QByteArray& body)
{
    return id + big(static_cast<quint32>(body.size())) + body;
}

QByteArray waveFile(const AudioFormat& format, const QList<qint32>& samples)
{
    const auto sampleBytes = static_cast<quint16>((format.bitsPerSample + 7) / 8);
    const auto frameBytes = static_cast<quint16>(format.channels * sampleBytes);
    // Six channels are front left, right, centre, low, back left and right.
    const quint32 mask = format.channels == 1 ? 4u : (1u << format.channels) - 1;
    const QByteArray header =
        little(quint16{0xFFFE}) + little(format.channels) + little(format.sampleRate)
        + little(format.sampleRate * frameBytes) + little(frameBytes)
        + little(static_cast<quint16>(8 * sampleBytes)) + little(quint16{22}) + little(format.bitsPerSample)
        + little(mask) + QByteArray("\x01\x00\x00\x00\x00\x00\x10\x00\x80\x00\x00\xAA\x00\x38\x9B\x71", 16);
    QByteArray data;
    data.reserve(samples.size() * sampleBytes);
    for (const qint32 sample : keepBits(samples, format.bitsPerSample)) {
        const quint32 stored = static_cast<quint32>(sample) ^ (sampleBytes == 1 ? 0x80000000u : 0u);
        for (int shift = 32 - 8 * sampleBytes; shift < 32; shift += 8)
            data.append(static_cast<char>(stored >> shift));
    }
    if (data.size() % 2 != 0)
        data.append('\0');
    const QByteArray body = "WAVE" + littleChunk("fmt ", header) + littleChunk("data", data);
    return littleChunk("RIFF", body);
}

QList<qint32> keepBits(const QList<qint32>& samples, int bits)
{
    QList<qint32> kept = samples;
    for (qint32& sample : kept)
        sample = static_cast<qint32>(static_cast<quint32>(sample) & (0xFFFFFFFFu << (32 - bits)));
    return kept;
}

static QList<qint32> fromRaw32(const QByteArray& bytes)
{
    QList<qint32> samples;
    samples.reserve(bytes.size() / 4);
    for (qsizetype i = 0; i + 4 <= bytes.size(); i += 4)
        samples.append(byteorder::readLittle<qint32>(bytes.constData() + i));
    return samples;
}

QList<qint32> decodeWithFfmpeg(const QString& name)
{
    const ToolResult result = runTool(
        QStringLiteral("ffmpeg"),
        {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-i"), name, QStringLiteral("-f"),
         QStringLiteral("s32le"), QStringLiteral("-c:a"), QStringLiteral("pcm_s32le"), QStringLiteral("-")});
    EXPECT_TRUE(result.ok()) << result.errors.toStdString();
    return fromRaw32(result.output);
}

QList<qint32> fromRaw16(const QByteArray& bytes)
{
    QList<qint32> samples;
    samples.reserve(bytes.size() / 2);
    for (qsizetype i = 0; i + 2 <= bytes.size(); i += 2)
        samples.append(byteorder::readLittle<qint16>(bytes.constData() + i) * 65536);
    return samples;
}

double largestDifference(const QList<qint32>& a, const QList<qint32>& b, int bits)
{
    EXPECT_EQ(a.size(), b.size());
    qint64 largest = 0;
    for (qsizetype i = 0; i < std::min(a.size(), b.size()); ++i)
        largest = std::max(largest, std::abs(qint64{a[i]} - b[i]));
    return std::ldexp(static_cast<double>(largest), bits - 32);
}

QList<qint32> patterns(const QList<quint32>& bits)
{
    return QList<qint32>(bits.begin(), bits.end());
}

std::vector<AudioFormat> formatsOfWidths(std::initializer_list<quint16> widths)
{
    std::vector<AudioFormat> formats;
    for (const quint16 width : widths) {
        for (const quint16 channels : {quint16{1}, quint16{2}, quint16{6}})
            formats.push_back({channels == 2 ? 96000u : 44100u, channels, width});
    }
    return formats;
}

std::string nameOfFormat(const ::testing::TestParamInfo<AudioFormat>& instance)
{
    return std::to_string(instance.param.bitsPerSample) + "bits" + std::to_string(instance.param.channels)
           + "channels";
}
