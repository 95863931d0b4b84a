#include "codecs/Transcoder.h"

#include "codecs/DecoderFiles.h"
#include "codecs/DecoderRun.h"
#include "metadata/LoudnessMeter.h"
#include "support/AudioMaker.h"
#include "support/Tool.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>

class TranscoderTest : public EncoderTest {
protected:
    // A WAVE file of noise in the given format; the samples as it holds them.
    QList<qint32> makeWave(const char* name, const AudioFormat& format, quint64 frames = 20000) const
    {
        const QList<qint32> samples =
            keepBits(audiomaker::noise(frames * format.channels, 31), format.bitsPerSample);
        writeAll(file(name), waveFile(format, samples));
        return samples;
    }

    bool convert(const char* source, const char* target, EncoderId id, quint32 factor = 1,
                 TrackGain* gain = nullptr) const
    {
        return convertFile(toPath(file(source)), toPath(file(target)), id, factor, gain);
    }

    // The samples as raw bytes, by the reference decoder.
    QByteArray decodeFlac(const char* name) const
    {
        const ToolResult tool = runTool(
            "flac", {"-s", "-d", "-c", "--force-raw-format", "--endian=little", "--sign=signed", file(name)});
        EXPECT_TRUE(tool.ok()) << tool.errors.toStdString();
        return tool.output;
    }

    // "rate channels bits" of the audio, by ffprobe.
    QString probed(const char* name) const
    {
        const ToolResult tool =
            runTool("ffprobe", {"-v", "error", "-show_streams", "-print_format", "json", file(name)});
        const QJsonObject stream = QJsonDocument::fromJson(tool.output)["streams"][0].toObject();
        const int raw = stream["bits_per_raw_sample"].toString().toInt();
        return QStringLiteral("%1 %2 %3")
            .arg(stream["sample_rate"].toString())
            .arg(stream["channels"].toInt())
            .arg(raw != 0 ? raw : stream["bits_per_sample"].toInt());
    }
};

TEST_F(TranscoderTest, WaveToFlacKeepsEveryBit)
{
    for (const AudioFormat& format :
         QList<AudioFormat>{{44100, 2, 16}, {96000, 2, 24}, {48000, 1, 16}, {48000, 5, 24}, {44100, 6, 16}}) {
        const QList<qint32> samples = makeWave("source.wav", format);
        ASSERT_TRUE(convert("source.wav", "target.flac", FlacEncoderId));
        EXPECT_EQ(decodeFlac("target.flac"), littleEndian(samples, format.bitsPerSample));
        EXPECT_EQ(
            probed("target.flac"),
            QStringLiteral("%1 %2 %3").arg(format.sampleRate).arg(format.channels).arg(format.bitsPerSample));
    }
}

TEST_F(TranscoderTest, FlacToWaveAndAiffKeepsEveryBit)
{
    for (const quint16 bits : {quint16{16}, quint16{24}}) {
        const AudioFormat format{48000, 2, bits};
        const QList<qint32> samples = keepBits(audiomaker::noise(2 * 30001, 8), bits);
        decoderfiles::encode(file("source.flac"), format, samples);
        ASSERT_TRUE(convert("source.flac", "target.wav", WavEncoderId));
        EXPECT_EQ(decodeWithFfmpeg(file("target.wav")), samples);
        ASSERT_TRUE(convert("source.flac", "target.aiff", AiffEncoderId));
        EXPECT_EQ(decodeWithFfmpeg(file("target.aiff")), samples);
        EXPECT_EQ(probed("target.aiff"), QStringLiteral("48000 2 %1").arg(bits));
    }
}

TEST_F(TranscoderTest, EveryKindThatIsReadIsConvertedWhole)
{
    for (const char* kind :
         {"wav", "aiff", "aif", "mp3", "flac", "m4a", "aac", "ogg", "opus", "wv", "dsf", "dff"}) {
        SCOPED_TRACE(kind);
        const QString source = file("source.") + QString::fromUtf8(kind);
        decoderfiles::make(source, 30000);
        const Decoded expected = decode(source);
        ASSERT_TRUE(expected.opened);
        ASSERT_TRUE(convertFile(toPath(source), toPath(file("target.flac")), FlacEncoderId, 1, nullptr));
        EXPECT_EQ(decodeFlac("target.flac"), littleEndian(expected.samples, expected.format.bitsPerSample));
    }
}

TEST_F(TranscoderTest, OneBitAudioBecomes24BitsAt352800)
{
    writeAll(file("source.dsf"), decoderfiles::dsf({}, decoderfiles::bits(2 * 4096 * 3, 5)));
    ASSERT_TRUE(convert("source.dsf", "target.wav", WavEncoderId));
    EXPECT_EQ(probed("target.wav"), "352800 2 24");
    ASSERT_TRUE(convert("source.dsf", "target.flac", FlacEncoderId));
    EXPECT_EQ(probed("target.flac"), "352800 2 24");
    EXPECT_EQ(decodeFlac("target.flac").size(), 4096 * 3 * 2 * 3);
}

TEST_F(TranscoderTest, Mp3SoundsAsItsSource)
{
    const QList<qint32> samples = decoderfiles::audio(44100, 2);
    writeAll(file("source.wav"), waveFile({44100, 2, 16}, samples));
    ASSERT_TRUE(convert("source.wav", "target.mp3", Mp3EncoderId));
    const QList<qint32> decoded = decodeWithFfmpeg(file("target.mp3"));
    ASSERT_EQ(decoded.size(), samples.size()); // the decoder takes delay and padding away
    double difference = 0;
    double power = 0;
    for (qsizetype i = 0; i < samples.size(); ++i) {
        difference += std::pow(static_cast<double>(decoded[i]) - samples[i], 2);
        power += std::pow(static_cast<double>(samples[i]), 2);
    }
    EXPECT_LT(difference, power / 1e4); // 40 dB
}

TEST_F(TranscoderTest, TagsOfTheSourceStayBehind)
{
    decoderfiles::make(file("source.flac"), 9000);
    ASSERT_TRUE(runTool("metaflac", {"--set-tag=TITLE=Stays behind", file("source.flac")}).ok());
    ASSERT_TRUE(convert("source.flac", "target.flac", FlacEncoderId));
    EXPECT_EQ(runTool("metaflac", {"--show-tag=TITLE", file("target.flac")}).output, "");
    EXPECT_NE(runTool("metaflac", {"--show-tag=TITLE", file("source.flac")}).output, "");
}

TEST_F(TranscoderTest, AFileWithoutAudioIsConverted)
{
    makeWave("source.wav", {44100, 2, 16}, 0);
    TrackGain gain;
    gain.enabled = true;
    ASSERT_TRUE(convert("source.wav", "target.flac", FlacEncoderId, 2, &gain));
    EXPECT_EQ(decodeFlac("target.flac"), "");
    EXPECT_TRUE(gain.blocks.isEmpty());
    EXPECT_EQ(gain.gain, 52.0);
}

TEST_F(TranscoderTest, ASourceOfAnEncodedKindThatIsCutGivesAShorterFile)
{
    const QList<qint32> samples = makeWave("source.wav", {44100, 2, 16}, 40000);
    decoderfiles::encode(file("source.flac"), {44100, 2, 16}, samples);
    const QByteArray source = readAll(file("source.flac"));
    writeAll(file("cut.flac"), source.left(source.size() / 2));
    ASSERT_TRUE(convert("cut.flac", "target.wav", WavEncoderId));
    const QList<qint32> converted = decodeWithFfmpeg(file("target.wav"));
    // Noise is as long in the file at any place; ten blocks of 4,096 make it whole.
    EXPECT_GE(converted.size(), 2 * 4 * 4096);
    EXPECT_LT(converted.size(), 2 * 5 * 4096);
    EXPECT_EQ(converted, samples.first(converted.size()));
}

TEST_F(TranscoderTest, AWaveThatIsCutIsSilentUpToItsStatedLength)
{
    QList<qint32> samples = makeWave("source.wav", {44100, 2, 16});
    writeAll(file("cut.wav"), readAll(file("source.wav")).chopped(30000));
    ASSERT_TRUE(convert("cut.wav", "target.flac", FlacEncoderId));
    std::fill(samples.end() - 15000, samples.end(), 0);
    EXPECT_EQ(decodeFlac("target.flac"), littleEndian(samples, 16));
}

TEST_F(TranscoderTest, AFactorOfTwoDoublesRateAndFrames)
{
    const QList<qint32> samples = audiomaker::sine(20000, 2, 1000, 44100, 0.5);
    writeAll(file("source.wav"), waveFile({44100, 2, 24}, samples));
    ASSERT_TRUE(convert("source.wav", "target.flac", FlacEncoderId, 2));
    EXPECT_EQ(probed("target.flac"), "88200 2 24");
    EXPECT_EQ(decodeFlac("target.flac").size(), 2 * 20000 * 2 * 3);
    // No seam where blocks meet: the same tone, 191.5 values later.
    const QList<qint32> raised = decodeWithFfmpeg(file("target.flac"));
    ASSERT_EQ(raised.size(), 2 * 40000);
    for (qsizetype i = 400; i < 40000; ++i) {
        const double expected = 0.5 * std::sin(2 * M_PI * 1000 * (static_cast<double>(i) - 191.5) / 88200);
        ASSERT_NEAR(raised[2 * i] / 2147483648.0, expected, 0.5e-3) << i;
    }
}

TEST_F(TranscoderTest, FactorsBelowTwoChangeNothing)
{
    const QList<qint32> samples = makeWave("source.wav", {44100, 2, 16});
    for (const quint32 factor : {0u, 1u}) {
        ASSERT_TRUE(convert("source.wav", "target.flac", FlacEncoderId, factor));
        EXPECT_EQ(decodeFlac("target.flac"), littleEndian(samples, 16));
        EXPECT_EQ(probed("target.flac"), "44100 2 16");
    }
}

TEST_F(TranscoderTest, TheDecodedAudioIsMeasuredBeforeItIsOversampled)
{
    const QList<qint32> samples = keepBits(audiomaker::sine(50000, 2, 997, 44100, 0.25), 16);
    writeAll(file("source.wav"), waveFile({44100, 2, 16}, samples));
    LoudnessMeter meter(44100, 2);
    meter.add(samples.constData(), 50000);
    meter.finish();
    for (const quint32 factor : {1u, 2u}) {
        TrackGain gain;
        gain.enabled = true;
        ASSERT_TRUE(convert("source.wav", "target.flac", FlacEncoderId, factor, &gain));
        EXPECT_EQ(gain.blocks, meter.gated);
        EXPECT_EQ(gain.gain, -18.0 - meter.gatedLoudness());
        EXPECT_EQ(gain.peak, meter.peak);
    }
    // A quarter of full scale in both channels lies 12.04 dB down.
    EXPECT_NEAR(meter.gatedLoudness(), 20 * std::log10(0.25), 0.1);
}

TEST_F(TranscoderTest, AGainThatIsNotEnabledIsLeftAsItIs)
{
    makeWave("source.wav", {44100, 2, 16});
    TrackGain gain;
    gain.gain = 7.0;
    gain.peak = 8.0;
    gain.blocks = {9.0};
    ASSERT_TRUE(convert("source.wav", "target.flac", FlacEncoderId, 1, &gain));
    EXPECT_EQ(gain.gain, 7.0);
    EXPECT_EQ(gain.peak, 8.0);
    EXPECT_EQ(gain.blocks, QList<double>{9.0});
}
