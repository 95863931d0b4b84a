#include "codecs/EncoderRun.h"
#include "support/AudioMaker.h"
#include "support/Tool.h"

#include <ostream>

class WavEncoderTest : public EncoderTest {
protected:
    QByteArray wav(const AudioFormat& format, const QList<qint32>& samples)
    {
        return encode(WavEncoderId, file("track.wav"), format, samples);
    }
};

struct HeaderCase {
    const char* name;
    AudioFormat format;
    QList<qint32> samples;
    const char* hex; ///< the whole file
};

static void PrintTo(const HeaderCase& value, std::ostream* out)
{
    *out << value.name;
}

class WavHeaderTest : public WavEncoderTest, public ::testing::WithParamInterface<HeaderCase> {};

TEST_P(WavHeaderTest, HoldsEveryFieldInItsPlace)
{
    const HeaderCase& expected = GetParam();
    EXPECT_EQ(wav(expected.format, expected.samples).toHex(' '),
              QByteArray::fromHex(expected.hex).toHex(' '));
}

#define SUB_FORMAT "01000000 00001000 800000AA 00389B71"

INSTANTIATE_TEST_SUITE_P(
    Forms, WavHeaderTest,
    ::testing::Values(
        // 44-byte header: 36 + 4 data bytes = 40 = 0x28; 44100 * 4 = 176400 = 0x02B110.
        HeaderCase{"Plain16Stereo",
                   {44100, 2, 16},
                   {0x12345678, -1},
                   "52494646 28000000 57415645 666D7420 10000000 0100 0200 44AC0000 10B10200 0400 1000"
                   "64617461 04000000 3412 FFFF"},
        // 48000 * 2 = 96000 = 0x017700. An 8-bit source is written at 16.
        HeaderCase{"Plain8Mono",
                   {48000, 1, 8},
                   {0x7F000000},
                   "52494646 26000000 57415645 666D7420 10000000 0100 0100 80BB0000 00770100 0200 1000"
                   "64617461 02000000 007F"},
        // 68-byte header: 60 + 6 = 66 = 0x42; 96000 * 6 = 576000 = 0x08CA00; mask 3.
        HeaderCase{"Extended24Stereo",
                   {96000, 2, 24},
                   {0x12345678, -256},
                   "52494646 42000000 57415645 666D7420 28000000 FEFF 0200 00770100 00CA0800 0600 1800"
                   "1600 1800 03000000 " SUB_FORMAT "64617461 06000000 563412 FFFFFF"},
        // 3 data bytes, odd: 60 + 3 + pad 1 = 64 = 0x40; 44100 * 3 = 132300 = 0x0204CC; mask 4.
        HeaderCase{"Extended24MonoOdd",
                   {44100, 1, 24},
                   {0x01020304},
                   "52494646 40000000 57415645 666D7420 28000000 FEFF 0100 44AC0000 CC040200 0300 1800"
                   "1600 1800 04000000 " SUB_FORMAT "64617461 03000000 030201 00"},
        // 16 bits but six channels: 60 + 12 = 72 = 0x48; 48000 * 12 = 576000; mask 0.
        HeaderCase{"Extended16Six",
                   {48000, 6, 16},
                   {0x00010000, 0x00020000, 0x00030000, 0x00040000, 0x00050000, 0x00060000},
                   "52494646 48000000 57415645 666D7420 28000000 FEFF 0600 80BB0000 00CA0800 0C00 1000"
                   "1600 1000 00000000 " SUB_FORMAT "64617461 0C000000 0100 0200 0300 0400 0500 0600"},
        // 17 bits are the first that are written at 24; 32 are cut to 24.
        HeaderCase{"Extended17Stereo",
                   {8000, 2, 17},
                   {},
                   "52494646 3C000000 57415645 666D7420 28000000 FEFF 0200 401F0000 80BB0000 0600 1800"
                   "1600 1800 03000000 " SUB_FORMAT "64617461 00000000"},
        HeaderCase{"Extended32Stereo",
                   {8000, 2, 32},
                   {-2, 0x7FFFFFFF},
                   "52494646 42000000 57415645 666D7420 28000000 FEFF 0200 401F0000 80BB0000 0600 1800"
                   "1600 1800 03000000 " SUB_FORMAT "64617461 06000000 FFFFFF FFFF7F"}),
    [](const auto& instance) { return std::string(instance.param.name); });

TEST_F(WavEncoderTest, SamplesAreCutWithoutRounding)
{
    const QList<qint32> samples{0x7FFFFFFF, -1, 0x0000FFFF, qint32(0x80000000), 0x7FFF8000};
    EXPECT_EQ(wav({44100, 1, 16}, samples).mid(44), QByteArray::fromHex("FF7F FFFF 0000 0080 FF7F"));
    EXPECT_EQ(wav({44100, 1, 24}, samples).mid(68).chopped(1),
              QByteArray::fromHex("FFFF7F FFFFFF FF0000 000080 80FF7F"));
}

TEST_F(WavEncoderTest, EverySampleIsTheTopOfItsValueWhateverTheLength)
{
    for (const quint64 count : {1u, 2u, 3u, 4u, 5u, 7u, 8u, 15u, 17u, 16383u, 16384u, 16385u, 70001u}) {
        const QList<qint32> samples = audiomaker::noise(count, 20);
        EXPECT_EQ(wav({44100, 1, 16}, samples).mid(44), littleEndian(samples, 16)) << count;
        QByteArray deep = littleEndian(samples, 24);
        if (deep.size() % 2 != 0)
            deep.append('\0');
        EXPECT_EQ(wav({44100, 1, 24}, samples).mid(68), deep) << count;
    }
}

TEST_F(WavEncoderTest, PadByteIsPartOfTheFileAndNotOfTheData)
{
    const QByteArray bytes = wav({44100, 1, 24}, {1, 2, 3});
    EXPECT_EQ(bytes.size(), 68 + 9 + 1);
    EXPECT_EQ(bytes.mid(4, 4), QByteArray::fromHex("46000000")); // 78 - 8 = 70
    EXPECT_EQ(bytes.mid(64, 4), QByteArray::fromHex("09000000"));
}

TEST_F(WavEncoderTest, TheSampleListCountsAndNotTheFrameCount)
{
    const auto encoder = makeEncoder(WavEncoderId);
    ASSERT_TRUE(encoder->open(toPath(file("a.wav")), {44100, 2, 16}));
    ASSERT_TRUE(encoder->write({{0x10000, 0x20000, 0x30000, 0x40000}, 1}));
    ASSERT_TRUE(encoder->write({{0x50000, 0x60000}, 0}));
    ASSERT_TRUE(encoder->close());
    const QByteArray bytes = readAll(file("a.wav"));
    EXPECT_EQ(bytes.mid(40), QByteArray::fromHex("0C000000 0100 0200 0300 0400 0500 0600"));
}

TEST_F(WavEncoderTest, WithoutCloseTheFileStatesNoAudio)
{
    auto encoder = makeEncoder(WavEncoderId);
    ASSERT_TRUE(encoder->open(toPath(file("a.wav")), {44100, 2, 16}));
    ASSERT_TRUE(encoder->write(makeBlock({1, 2, 3, 4}, 2)));
    encoder.reset();
    const QByteArray bytes = readAll(file("a.wav"));
    EXPECT_EQ(bytes.mid(4, 4), QByteArray(4, '\0'));
    EXPECT_EQ(bytes.mid(40, 4), QByteArray(4, '\0'));
}

TEST_F(WavEncoderTest, OtherProgramsReadTheSameSamples)
{
    const QList<qint32> samples = audiomaker::noise(2 * 40000, 21);
    for (const quint16 bits : {quint16{16}, quint16{24}}) {
        wav({44100, 2, bits}, samples);
        const auto sox = runTool("sox", {file("track.wav"), "-t", "raw", "-L", file("sox.raw")});
        ASSERT_TRUE(sox.ok()) << sox.errors.toStdString();
        EXPECT_EQ(readAll(file("sox.raw")), littleEndian(samples, bits));
        const auto probe = runTool("ffprobe", {"-v", "error", "-show_entries",
                                               "stream=codec_name,channel_layout,duration_ts", "-of",
                                               "csv=p=0", file("track.wav")});
        EXPECT_EQ(probe.output.trimmed(), bits == 16 ? "pcm_s16le,unknown,40000" : "pcm_s24le,stereo,40000");
    }
}
