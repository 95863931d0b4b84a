#include "codecs/EncoderRun.h"
#include "support/AudioMaker.h"
#include "support/FileSizeLimit.h"
#include "support/NameOfBytes.h"
#include "support/OpenFiles.h"

#include <QFile>
#include <QFileInfo>

#include <array>
#include <limits>

// The questions that every encoder of a real file must answer alike.
class EncoderConformanceTest : public EncoderTest, public ::testing::WithParamInterface<EncoderId> {
protected:
    EncoderConformanceTest() : encoder(makeEncoder(GetParam())) {}

    // The two of MPEG-4 have nothing to lose where nothing is open, and say so.
    static bool closesWithNothingOpen() { return GetParam() == AacEncoderId || GetParam() == AlacEncoderId; }

    const AudioFormat stereo{44100, 2, 16};
    std::unique_ptr<IAudioEncoder> encoder;
};

TEST_P(EncoderConformanceTest, ClosingWithoutOpeningHasItsFixedAnswer)
{
    EXPECT_EQ(encoder->close(), closesWithNothingOpen());
}

TEST_P(EncoderConformanceTest, WritingWithoutOpeningFails)
{
    EXPECT_FALSE(encoder->write(makeBlock({1, 2}, 2)));
}

TEST_P(EncoderConformanceTest, SecondCloseWritesNothing)
{
    const QString name = file("twice");
    const QByteArray before = encode(GetParam(), name, stereo, audiomaker::noise(4000, 1));
    ASSERT_TRUE(encoder->open(toPath(name), stereo));
    ASSERT_TRUE(encoder->write(makeBlock(audiomaker::noise(4000, 1), 2)));
    EXPECT_TRUE(encoder->close());
    EXPECT_EQ(encoder->close(), closesWithNothingOpen());
    EXPECT_FALSE(encoder->write(makeBlock({1, 2}, 2)));
    EXPECT_EQ(readAll(name), before);
}

TEST_P(EncoderConformanceTest, SecondOpenIsRefusedAndLeavesTheFirstFileAlone)
{
    const QList<qint32> samples = audiomaker::noise(30000, 2);
    const QByteArray undisturbed = encode(GetParam(), file("undisturbed"), stereo, samples);

    ASSERT_TRUE(encoder->open(toPath(file("first")), stereo));
    ASSERT_TRUE(encoder->write(makeBlock(samples.mid(0, 20000), 2)));
    EXPECT_FALSE(encoder->open(toPath(file("second")), {96000, 1, 24}));
    EXPECT_FALSE(encoder->open(toPath(file("first")), stereo));
    EXPECT_TRUE(encoder->write(makeBlock(samples.mid(20000), 2)));
    EXPECT_TRUE(encoder->close());

    EXPECT_FALSE(QFile::exists(file("second")));
    EXPECT_EQ(readAll(file("first")), undisturbed);
}

TEST_P(EncoderConformanceTest, AnEncoderCanBeUsedAgainAfterClosing)
{
    const QList<qint32> samples = audiomaker::noise(9998, 3);
    const AudioFormat monoDeep{48000, 1, 24};
    const QByteArray expected = encode(GetParam(), file("fresh"), stereo, samples);

    ASSERT_TRUE(encoder->open(toPath(file("one")), monoDeep));
    ASSERT_TRUE(encoder->write(makeBlock(audiomaker::noise(777, 4), 1)));
    ASSERT_TRUE(encoder->close());
    ASSERT_TRUE(encoder->open(toPath(file("two")), stereo));
    ASSERT_TRUE(encoder->write(makeBlock(samples, 2)));
    ASSERT_TRUE(encoder->close());
    EXPECT_EQ(readAll(file("two")), expected);
}

TEST_P(EncoderConformanceTest, EmptyBlocksChangeNothing)
{
    const QList<qint32> samples = audiomaker::noise(9000, 5);
    const QByteArray expected = encode(GetParam(), file("plain"), stereo, samples);

    ASSERT_TRUE(encoder->open(toPath(file("mixed")), stereo));
    EXPECT_TRUE(encoder->write(AudioBlock()));
    EXPECT_TRUE(encoder->write(makeBlock(samples, 2)));
    EXPECT_TRUE(encoder->write(AudioBlock()));
    EXPECT_TRUE(encoder->close());
    EXPECT_EQ(readAll(file("mixed")), expected);
}

TEST_P(EncoderConformanceTest, AFileWithoutAudioIsComplete)
{
    ASSERT_TRUE(encoder->open(toPath(file("silent")), stereo));
    EXPECT_TRUE(encoder->close());
    EXPECT_GT(QFileInfo(file("silent")).size(), 0);
}

TEST_P(EncoderConformanceTest, ManyBlocksGiveTheSameBytesAsOne)
{
    // More than any buffer inside holds, and cut so that no cut meets another.
    const QList<qint32> samples = audiomaker::noise(2 * 150001, 6);
    for (const quint16 bits : {quint16{16}, quint16{24}}) {
        const AudioFormat format{44100, 2, bits};
        const QByteArray whole = encode(GetParam(), file("whole"), format, samples);
        EXPECT_EQ(encodeInPieces(GetParam(), file("pieces"), format, samples, {1, 4095, 1152, 17, 20011}),
                  whole);
    }
}

TEST_P(EncoderConformanceTest, ASampleListShorterThanItsFrameCountIsNotReadPast)
{
    ASSERT_TRUE(encoder->open(toPath(file("short")), stereo));
    EXPECT_TRUE(encoder->write({audiomaker::noise(101, 7), 1000})); // the last frame is half
    EXPECT_TRUE(encoder->write({{}, 1000}));
    EXPECT_TRUE(encoder->write({{5}, std::numeric_limits<quint64>::max()}));
    EXPECT_TRUE(encoder->close());
}

TEST_P(EncoderConformanceTest, OpeningInAMissingFolderFails)
{
    EXPECT_FALSE(encoder->open(toPath(file("missing/track")), stereo));
    EXPECT_FALSE(encoder->write(makeBlock({1, 2}, 2)));
    EXPECT_EQ(encoder->close(), closesWithNothingOpen());
}

TEST_P(EncoderConformanceTest, OpeningAFolderFailsAndAnotherTryMaySucceed)
{
    EXPECT_FALSE(encoder->open(toPath(folder.path()), stereo));
    EXPECT_TRUE(encoder->open(toPath(file("track")), stereo));
    EXPECT_TRUE(encoder->close());
}

TEST_P(EncoderConformanceTest, AnEarlierFileIsReplacedAsAWhole)
{
    const QByteArray expected = encode(GetParam(), file("fresh"), stereo, audiomaker::noise(2000, 8));
    encode(GetParam(), file("reused"), stereo, audiomaker::noise(90000, 9));
    EXPECT_EQ(encode(GetParam(), file("reused"), stereo, audiomaker::noise(2000, 8)), expected);
}

TEST_P(EncoderConformanceTest, FileNamesAreTakenAsTheyAre)
{
    const std::filesystem::path name = toPath(folder.path()) / nameOfBytes("\xE6\x9B\xB2 \xFF\xFE ' 1");
    ASSERT_TRUE(encoder->open(name, stereo));
    ASSERT_TRUE(encoder->close());
    // Not a name that Qt could clear away.
    EXPECT_TRUE(std::filesystem::remove(name));
}

TEST_P(EncoderConformanceTest, FormatsOfNothingDoNotCrash)
{
    for (const AudioFormat& format :
         {AudioFormat{44100, 0, 16}, AudioFormat{0, 2, 16}, AudioFormat{0, 0, 0}, AudioFormat{44100, 2, 0},
          AudioFormat{44100, 65535, 65535}, AudioFormat{4294967295, 65535, 24}}) {
        const auto other = makeEncoder(GetParam());
        const bool opened = other->open(toPath(file("nothing")), format);
        EXPECT_TRUE(!other->write({audiomaker::noise(5000, 10), 2500}) || opened);
        EXPECT_TRUE(!other->close() || opened || closesWithNothingOpen());
    }
}

TEST_P(EncoderConformanceTest, DestructionOfAnOpenEncoderLetsTheFileGo)
{
    const auto before = openFileCount();
    ASSERT_TRUE(encoder->open(toPath(file("left")), stereo));
    ASSERT_TRUE(encoder->write(makeBlock(audiomaker::noise(4000, 11), 2)));
    EXPECT_EQ(openFileCount(), before + 1);
    encoder.reset();
    EXPECT_EQ(openFileCount(), before);
}

TEST_P(EncoderConformanceTest, ShortFileOnAFullDiskFails)
{
    const FileSizeLimit disk(0);
    const bool opened = encoder->open(toPath(file("full")), stereo);
    const bool written = encoder->write(makeBlock(audiomaker::noise(200, 12), 2));
    const bool closed = encoder->close();
    EXPECT_FALSE(opened && written && closed);
    EXPECT_FALSE(closed);
}

TEST_P(EncoderConformanceTest, LongFileOnAFullDiskFailsFromWriteOn)
{
    const FileSizeLimit disk(0);
    const bool opened = encoder->open(toPath(file("full")), stereo);
    const bool written = encoder->write(makeBlock(audiomaker::noise(2000000, 13), 2));
    EXPECT_FALSE(opened && written);
    EXPECT_FALSE(encoder->write(AudioBlock()));
    EXPECT_FALSE(encoder->close());
}

TEST_P(EncoderConformanceTest, ADiskThatEndsOneByteTooEarlyFails)
{
    for (const quint64 samples : {quint64{3000}, quint64{300000}}) {
        const QList<qint32> audio = audiomaker::noise(samples, 14);
        const auto size = static_cast<quint64>(encode(GetParam(), file("fits"), stereo, audio).size());
        for (const quint64 missing : {quint64{1}, quint64{100}, size / 2}) {
            const FileSizeLimit disk(size - missing);
            const auto other = makeEncoder(GetParam());
            const bool opened = other->open(toPath(file("cut")), stereo);
            const bool written = other->write(makeBlock(audio, 2));
            const bool closed = other->close();
            EXPECT_FALSE(opened && written && closed) << missing << " bytes missing of " << size;
        }
        const FileSizeLimit disk(size);
        encode(GetParam(), file("justFits"), stereo, audio);
    }
}

static std::string nameOf(const ::testing::TestParamInfo<EncoderId>& instance)
{
    constexpr std::array names{"Wav", "Flac", "Mp3", "Aiff", "Aac", "Alac"};
    return names.at(instance.param);
}

INSTANTIATE_TEST_SUITE_P(All, EncoderConformanceTest,
                         ::testing::Values(WavEncoderId, FlacEncoderId, Mp3EncoderId, AiffEncoderId,
                                           AacEncoderId, AlacEncoderId),
                         nameOf);
