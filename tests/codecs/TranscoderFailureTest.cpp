#include "codecs/Transcoder.h"

#include "codecs/DecoderFiles.h"
#include "codecs/DecoderRun.h"
#include "support/AudioMaker.h"
#include "support/FileSizeLimit.h"
#include "support/OpenFiles.h"

#include <QFile>
#include <QFileInfo>

#include <limits>

class TranscoderFailureTest : public EncoderTest {
protected:
    bool convert(const QString& source, const QString& target, EncoderId id, quint32 factor = 1,
                 TrackGain* gain = nullptr) const
    {
        const qsizetype before = openFileCount();
        const bool converted = convertFile(toPath(source), toPath(target), id, factor, gain);
        EXPECT_EQ(openFileCount(), before); // both sides closed, whatever happened
        return converted;
    }

    QString makeWave(const char* name, const AudioFormat& format = {}, quint64 frames = 20000) const
    {
        writeAll(file(name), waveFile(format, audiomaker::noise(frames * format.channels, 31)));
        return file(name);
    }
};

TEST_F(TranscoderFailureTest, AnUnknownEndingCreatesNoTarget)
{
    const QString source = makeWave("source.txt");
    EXPECT_FALSE(convert(source, file("target.flac"), FlacEncoderId));
    EXPECT_FALSE(QFile::exists(file("target.flac")));
}

TEST_F(TranscoderFailureTest, ASourceThatIsNotWhatItsEndingSaysCreatesNoTarget)
{
    for (const char* name : {"source.wav", "source.flac", "source.mp3", "source.dsf", "source.opus"}) {
        writeAll(file(name), QByteArray(3000, 'x'));
        EXPECT_FALSE(convert(file(name), file("target.flac"), FlacEncoderId)) << name;
        EXPECT_FALSE(QFile::exists(file("target.flac"))) << name;
    }
    EXPECT_FALSE(convert(file("missing.wav"), file("target.flac"), FlacEncoderId));
    EXPECT_FALSE(QFile::exists(file("target.flac")));
}

TEST_F(TranscoderFailureTest, AnUnknownEncoderCreatesNoTarget)
{
    const QString source = makeWave("source.wav");
    for (const int id : {-1, 6, std::numeric_limits<int>::max()}) {
        EXPECT_FALSE(convert(source, file("target.flac"), static_cast<EncoderId>(id))) << id;
        EXPECT_FALSE(QFile::exists(file("target.flac"))) << id;
    }
}

TEST_F(TranscoderFailureTest, AFormatThatTheEncoderRefusesLeavesNothingOrAnEmptyFile)
{
    // More channels than FLAC has, and a rate beyond its twenty bits.
    for (const AudioFormat& format : {AudioFormat{44100, 9, 16}, AudioFormat{2000000, 2, 16}}) {
        const QString source = makeWave("source.wav", format, 3000);
        EXPECT_FALSE(convert(source, file("target.flac"), FlacEncoderId));
        EXPECT_EQ(QFileInfo(file("target.flac")).size(), 0);
    }
    // A rate that only the factor takes beyond them.
    const QString source = makeWave("source.wav", {500000, 2, 16}, 3000);
    EXPECT_TRUE(convert(source, file("target.flac"), FlacEncoderId));
    EXPECT_FALSE(convert(source, file("raised.flac"), FlacEncoderId, 3));
    EXPECT_EQ(QFileInfo(file("raised.flac")).size(), 0);
}

TEST_F(TranscoderFailureTest, ATargetThatCannotBeCreatedFails)
{
    const QString source = makeWave("source.wav");
    EXPECT_FALSE(convert(source, file("missing/target.flac"), FlacEncoderId));
    EXPECT_FALSE(convert(source, folder.path(), WavEncoderId));
}

TEST_F(TranscoderFailureTest, NothingIsConvertedAtTheEndOfTheProgram)
{
    const QString source = makeWave("source.wav");
    conversionsAreStopped = true;
    EXPECT_FALSE(convert(source, file("target.flac"), FlacEncoderId));
    conversionsAreStopped = false;
    EXPECT_TRUE(convert(source, file("target.flac"), FlacEncoderId));
}

TEST_F(TranscoderFailureTest, AFullDiskFailsAndStillMeasures)
{
    const QString source = makeWave("source.wav", {44100, 2, 16}, 200000);
    for (const EncoderId id : {WavEncoderId, FlacEncoderId, AiffEncoderId, Mp3EncoderId}) {
        TrackGain gain;
        gain.enabled = true;
        bool converted = true;
        {
            const FileSizeLimit full(20000);
            converted = convert(source, file("target"), id, 1, &gain);
        }
        EXPECT_FALSE(converted) << id;
        EXPECT_LE(QFileInfo(file("target")).size(), 20000) << id;
        EXPECT_GT(gain.peak, 0.5) << id;
    }
}

TEST_F(TranscoderFailureTest, ADiskThatIsFullAtTheVeryEndFails)
{
    // The whole file fits in the buffers; only closing it meets the disk.
    const QString source = makeWave("source.wav", {44100, 2, 16}, 100);
    for (const EncoderId id : {WavEncoderId, FlacEncoderId, AiffEncoderId, Mp3EncoderId}) {
        bool converted = true;
        {
            const FileSizeLimit full(10);
            converted = convert(source, file("target"), id);
        }
        EXPECT_FALSE(converted) << id;
    }
}

TEST_F(TranscoderFailureTest, HostileHeadersNeitherCrashNorHang)
{
    const auto tryAll = [&](quint32 rate, quint16 channels, quint16 bits) {
        // Few frames, for at one a second they are long audio to an MP3 encoder.
        const QByteArray data = littleEndian(audiomaker::noise(channels > 2 ? channels : 50, 3), 16);
        const QByteArray format = little(quint16{1}) + little(channels) + little(rate) + little(rate)
                                  + little(quint16{4}) + little(bits);
        writeAll(file("source.wav"), "RIFF" + little(quint32{0}) + "WAVE" + littleChunk("fmt ", format)
                                         + littleChunk("data", data));
        for (const EncoderId id : {WavEncoderId, FlacEncoderId, Mp3EncoderId, AiffEncoderId}) {
            SCOPED_TRACE(::testing::Message() << rate << " " << channels << " " << bits << " " << id);
            TrackGain gain;
            gain.enabled = true;
            const bool converted = convert(file("source.wav"), file("target"), id, 3, &gain);
            const bool refused = id == FlacEncoderId && (channels == 0 || channels > 8);
            EXPECT_FALSE(converted && refused);
            EXPECT_FALSE(converted && QFileInfo(file("target")).size() == 0);
        }
    };
    for (const quint32 rate : {0u, 1u, 9u, 44100u, 0x80000000u, 0xFFFFFFFFu}) {
        for (const quint16 channels : {quint16{0}, quint16{1}, quint16{2}})
            tryAll(rate, channels, 16);
    }
    tryAll(44100, 65535, 16);
    tryAll(0xFFFFFFFF, 65535, 65535);
    tryAll(44100, 2, 0);
    tryAll(9, 1, 65535);
}

TEST_F(TranscoderFailureTest, AFactorBeyondAnyMemoryFails)
{
    const QString source = makeWave("source.wav");
    EXPECT_FALSE(convert(source, file("target.wav"), WavEncoderId, std::numeric_limits<quint32>::max()));
    EXPECT_LT(QFileInfo(file("target.wav")).size(), 1000);
}
