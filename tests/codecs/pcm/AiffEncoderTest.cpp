#include "codecs/EncoderRun.h"
#include "support/AudioMaker.h"
#include "support/Tool.h"

#include <ostream>

class AiffEncoderTest : public EncoderTest {
protected:
    QByteArray aiff(const AudioFormat& format, const QList<qint32>& samples)
    {
        return encode(AiffEncoderId, file("track.aiff"), format, samples);
    }
};

struct AiffCase {
    const char* name;
    AudioFormat format;
    QList<qint32> samples;
    const char* hex; ///< the whole file
};

static void PrintTo(const AiffCase& value, std::ostream* out)
{
    *out << value.name;
}

class AiffHeaderTest : public AiffEncoderTest, public ::testing::WithParamInterface<AiffCase> {};

TEST_P(AiffHeaderTest, HoldsEveryFieldInItsPlace)
{
    const AiffCase& expected = GetParam();
    EXPECT_EQ(aiff(expected.format, expected.samples).toHex(' '),
              QByteArray::fromHex(expected.hex).toHex(' '));
}

INSTANTIATE_TEST_SUITE_P(
    Forms, AiffHeaderTest,
    ::testing::Values(
        // 8 data bytes: form 46 + 8 = 54 = 0x36, sound 8 + 8 = 0x10.
        AiffCase{"Stereo16",
                 {44100, 2, 16},
                 {0x12345678, -1, 0x7FFFFFFF, 0x00018000},
                 "464F524D 00000036 41494646 434F4D4D 00000012 0002 00000002 0010 400EAC44000000000000"
                 "53534E44 00000010 00000000 00000000 1234 FFFF 7FFF 0001"},
        // d = 3, odd: form 46 + 3 + 1 = 50 = 0x32, sound 3 + 8 = 11.
        AiffCase{"Mono24OneFrame",
                 {48000, 1, 24},
                 {0x01020304},
                 "464F524D 00000032 41494646 434F4D4D 00000012 0001 00000001 0018 400EBB80000000000000"
                 "53534E44 0000000B 00000000 00000000 010203 00"},
        // Only exactly 16 bits are written at 16: 8 become 24. 46 + 6 = 52 = 0x34.
        AiffCase{"Stereo8",
                 {44100, 2, 8},
                 {0x7F000000, -16777216},
                 "464F524D 00000034 41494646 434F4D4D 00000012 0002 00000001 0018 400EAC44000000000000"
                 "53534E44 0000000E 00000000 00000000 7F0000 FF0000"},
        // 192000 = 0xBB80 * 4, so two exponents above 48000. 46 + 12 = 58 = 0x3A.
        AiffCase{"Quad32",
                 {192000, 4, 32},
                 {0x7FFFFFFF, -1, -2, 255},
                 "464F524D 0000003A 41494646 434F4D4D 00000012 0004 00000001 0018 4010BB80000000000000"
                 "53534E44 00000014 00000000 00000000 7FFFFF FFFFFF FFFFFF 000000"},
        AiffCase{"Empty",
                 {88200, 2, 16},
                 {},
                 "464F524D 0000002E 41494646 434F4D4D 00000012 0002 00000000 0010 400FAC44000000000000"
                 "53534E44 00000008 00000000 00000000"}),
    [](const auto& instance) { return std::string(instance.param.name); });

TEST_F(AiffEncoderTest, RatesAreExtendedFloats)
{
    const auto rateBytes = [this](quint32 rate) { return aiff({rate, 1, 16}, {}).mid(28, 10).toHex(); };
    EXPECT_EQ(rateBytes(0), "00000000000000000000");
    EXPECT_EQ(rateBytes(1), "3fff8000000000000000");           // 1.0 * 2^0
    EXPECT_EQ(rateBytes(3), "4000c000000000000000");           // 1.5 * 2^1
    EXPECT_EQ(rateBytes(96000), "400fbb80000000000000");       // 0x17700 begins with 0xBB8 shifted by one
    EXPECT_EQ(rateBytes(4294967295u), "401effffffff00000000"); // 32 ones, exponent 31
}

TEST_F(AiffEncoderTest, SamplesAreCutWithoutRounding)
{
    const QList<qint32> samples{0x7FFFFFFF, -1, 0x0000FFFF, qint32(0x80000000)};
    EXPECT_EQ(aiff({44100, 1, 16}, samples).mid(54), QByteArray::fromHex("7FFF FFFF 0000 8000"));
    EXPECT_EQ(aiff({44100, 1, 24}, samples).mid(54), QByteArray::fromHex("7FFFFF FFFFFF 0000FF 800000"));
}

TEST_F(AiffEncoderTest, EverySampleIsTheTopOfItsValueWhateverTheLength)
{
    for (const quint64 count : {2u, 4u, 6u, 10u, 16382u, 16384u, 16386u, 70002u}) {
        const QList<qint32> samples = audiomaker::noise(count, 30);
        EXPECT_EQ(aiff({44100, 1, 16}, samples).mid(54), bigEndian(samples, 16)) << count;
        EXPECT_EQ(aiff({44100, 1, 24}, samples).mid(54), bigEndian(samples, 24)) << count;
    }
}

TEST_F(AiffEncoderTest, TheFrameCountMakesTheSizes)
{
    const auto encoder = makeEncoder(AiffEncoderId);
    ASSERT_TRUE(encoder->open(toPath(file("a.aiff")), {44100, 2, 16}));
    ASSERT_TRUE(encoder->write({{0x10000, 0x20000, 0x30000, 0x40000}, 1}));
    ASSERT_TRUE(encoder->close());
    const QByteArray bytes = readAll(file("a.aiff"));
    EXPECT_EQ(bytes.mid(4, 4), QByteArray::fromHex("00000032")); // 4 + 46
    EXPECT_EQ(bytes.mid(22, 4), QByteArray::fromHex("00000001"));
    EXPECT_EQ(bytes.mid(42, 4), QByteArray::fromHex("0000000C")); // 4 + 8
    EXPECT_EQ(bytes.mid(54), QByteArray::fromHex("0001 0002 0003 0004"));
}

TEST_F(AiffEncoderTest, WithoutCloseTheFileStatesNoAudio)
{
    auto encoder = makeEncoder(AiffEncoderId);
    ASSERT_TRUE(encoder->open(toPath(file("a.aiff")), {44100, 2, 16}));
    ASSERT_TRUE(encoder->write(makeBlock({1, 2, 3, 4}, 2)));
    encoder.reset();
    const QByteArray bytes = readAll(file("a.aiff"));
    for (const int sizeField : {4, 22, 42})
        EXPECT_EQ(bytes.mid(sizeField, 4), QByteArray(4, '\0')) << sizeField;
}

TEST_F(AiffEncoderTest, OtherProgramsReadTheSameSamples)
{
    const QList<qint32> samples = audiomaker::noise(3 * 20001, 31);
    for (const quint16 bits : {quint16{16}, quint16{24}}) {
        aiff({48000, 3, bits}, samples);
        const auto sox = runTool("sox", {file("track.aiff"), "-t", "raw", "-L", file("sox.raw")});
        ASSERT_TRUE(sox.ok()) << sox.errors.toStdString();
        EXPECT_EQ(readAll(file("sox.raw")), littleEndian(samples, bits));
        const auto probe = runTool("ffprobe", {"-v", "error", "-show_entries",
                                               "stream=codec_name,sample_rate,channels,duration_ts", "-of",
                                               "csv=p=0", file("track.aiff")});
        EXPECT_EQ(probe.output.trimmed(), bits == 16 ? "pcm_s16be,48000,3,20001" : "pcm_s24be,48000,3,20001");
    }
}
