#include "codecs/media/AacEncoder.h"
#include "codecs/media/AlacEncoder.h"

#include "base/ByteOrder.h"
#include "codecs/EncoderRun.h"
#include "support/AudioMaker.h"

// What the platform's writer was asked to do.
struct Log {
    bool opens = true;
    qint64 framesUntilFull = -1;
    bool finishes = true;
    MediaFormat format;
    QByteArray pcm;
    quint64 frames = 0;
    std::size_t largestWrite = 0;
    int opened = 0;
    int finished = 0;
    int alive = 0;
};

struct RecordingWriter : MediaWriter {
    static inline Log log;
    bool isOpen = false;

    RecordingWriter() { ++log.alive; }
    ~RecordingWriter() override { --log.alive; }

    bool open(const std::filesystem::path&, const MediaFormat& format) override
    {
        ++log.opened;
        log.format = format;
        isOpen = log.opens;
        return log.opens;
    }
    bool write(const quint8* pcm, std::size_t frames) override
    {
        EXPECT_TRUE(isOpen);
        if (log.framesUntilFull >= 0 && static_cast<qint64>(log.frames + frames) > log.framesUntilFull)
            return false;
        const AudioFormat& format = log.format.pcm;
        log.pcm.append(reinterpret_cast<const char*>(pcm),
                       static_cast<qsizetype>(frames * format.channels * format.bitsPerSample / 8));
        log.frames += frames;
        log.largestWrite = std::max(log.largestWrite, frames);
        return true;
    }
    bool finish() override
    {
        EXPECT_TRUE(isOpen);
        isOpen = false;
        ++log.finished;
        return log.finishes;
    }
};

static std::unique_ptr<MediaWriter> makeRecordingWriter()
{
    return std::make_unique<RecordingWriter>();
}

template<typename Encoder>
class MediaEncoderTest : public ::testing::Test {
protected:
    MediaEncoderTest() { log() = Log(); }
    ~MediaEncoderTest() override { EXPECT_EQ(log().alive, 0); }

    static Log& log() { return RecordingWriter::log; }

    // What the writer gets of one block.
    static QByteArray written(const AudioFormat& format, const QList<qint32>& samples)
    {
        Encoder encoder(makeRecordingWriter);
        log() = Log();
        EXPECT_TRUE(encoder.open("x.m4a", format));
        EXPECT_TRUE(encoder.write(makeBlock(samples, format.channels)));
        EXPECT_TRUE(encoder.close());
        return log().pcm;
    }
};

using Encoders = ::testing::Types<AacEncoder, AlacEncoder>;
TYPED_TEST_SUITE(MediaEncoderTest, Encoders);

using AacPcmTest = MediaEncoderTest<AacEncoder>;
using AlacPcmTest = MediaEncoderTest<AlacEncoder>;

TYPED_TEST(MediaEncoderTest, SixteenBitDiscAudioPassesUnchanged)
{
    const QList<qint32> samples = audiomaker::from16(audiomaker::to16(audiomaker::noise(2 * 40000, 100)));
    EXPECT_EQ(TestFixture::written({44100, 2, 16}, samples), littleEndian(samples, 16));
    EXPECT_EQ(this->log().format.pcm, (AudioFormat{44100, 2, 16}));
}

TYPED_TEST(MediaEncoderTest, ARefusalByThePlatformIsARefusal)
{
    this->log().opens = false;
    TypeParam encoder(makeRecordingWriter);
    EXPECT_FALSE(encoder.open("x.m4a", {44100, 2, 16}));
    EXPECT_FALSE(encoder.write(makeBlock({1, 2}, 2)));
    EXPECT_TRUE(encoder.close());
    EXPECT_EQ(this->log().finished, 0);
}

TYPED_TEST(MediaEncoderTest, ALostWriteIsReported)
{
    this->log().framesUntilFull = 20000;
    TypeParam encoder(makeRecordingWriter);
    ASSERT_TRUE(encoder.open("x.m4a", {44100, 2, 16}));
    EXPECT_TRUE(encoder.write(makeBlock(audiomaker::noise(2 * 20000, 101), 2)));
    EXPECT_TRUE(encoder.write(AudioBlock()));
    EXPECT_FALSE(encoder.write(makeBlock(audiomaker::noise(2, 102), 2)));
    EXPECT_TRUE(encoder.close());
}

TYPED_TEST(MediaEncoderTest, AnEndThatFailsIsReportedOnce)
{
    this->log().finishes = false;
    TypeParam encoder(makeRecordingWriter);
    ASSERT_TRUE(encoder.open("x.m4a", {44100, 2, 16}));
    EXPECT_FALSE(encoder.close());
    EXPECT_TRUE(encoder.close());
    EXPECT_EQ(this->log().finished, 1);
}

TYPED_TEST(MediaEncoderTest, DestructionCompletesTheFile)
{
    {
        TypeParam encoder(makeRecordingWriter);
        ASSERT_TRUE(encoder.open("x.m4a", {44100, 2, 16}));
    }
    EXPECT_EQ(this->log().finished, 1);
}

TYPED_TEST(MediaEncoderTest, ASecondOpenAsksNoOne)
{
    TypeParam encoder(makeRecordingWriter);
    ASSERT_TRUE(encoder.open("x.m4a", {44100, 2, 16}));
    EXPECT_FALSE(encoder.open("y.m4a", {96000, 2, 24}));
    EXPECT_EQ(this->log().opened, 1);
    const QList<qint32> samples{1 << 16, 2 << 16};
    EXPECT_TRUE(encoder.write(makeBlock(samples, 2)));
    EXPECT_EQ(this->log().pcm, littleEndian(samples, 16));
}

TYPED_TEST(MediaEncoderTest, AWholeDiscInOneBlockGoesThroughInPieces)
{
    this->written({44100, 2, 16}, audiomaker::noise(2 * 1000003, 103));
    EXPECT_EQ(this->log().frames, 1000003u);
    EXPECT_LE(this->log().largestWrite, 65536u);
}

TEST_F(AacPcmTest, ThePlatformIsAskedFor192Kbit)
{
    written({96000, 1, 24}, {});
    EXPECT_EQ(log().format.codec, MediaCodec::Aac);
    EXPECT_EQ(log().format.bytesPerSecond, 24000u);
    EXPECT_EQ(log().format.pcm, (AudioFormat{48000, 1, 16}));
}

TEST_F(AacPcmTest, WideSourcesAreDitheredAtTheirOwnRate)
{
    const QList<qint32> samples = audiomaker::noise(2 * 40000, 104);
    QByteArray expected(samples.size() * 2, '\0');
    AacDither dither;
    dither.toPcm16(samples.constData(), static_cast<std::size_t>(samples.size()), true,
                   reinterpret_cast<quint8*>(expected.data()));
    EXPECT_EQ(written({48000, 2, 24}, samples), expected);
    EXPECT_EQ(written({44100, 2, 17}, samples), expected);
    EXPECT_NE(written({44100, 2, 16}, samples), expected);
}

TEST_F(AacPcmTest, HighRatesAreBroughtDownFirstAndDithered)
{
    for (const quint16 bits : QList<quint16>{16, 24}) {
        const QList<qint32> samples = audiomaker::noise(2 * 50001, 105);
        AacDecimator decimator(2, 2);
        const AudioBlock reduced = decimator.run(makeBlock(samples, 2));
        QByteArray expected(reduced.samples.size() * 2, '\0');
        AacDither dither;
        dither.toPcm16(reduced.samples.constData(), static_cast<std::size_t>(reduced.samples.size()), true,
                       reinterpret_cast<quint8*>(expected.data()));
        EXPECT_EQ(written({96000, 2, bits}, samples), expected);
        EXPECT_EQ(log().frames, 25000u);
    }
}

TEST_F(AacPcmTest, ASecondFileStartsWithAnEmptyFilter)
{
    const QList<qint32> samples = audiomaker::noise(2 * 5000, 106);
    AacEncoder encoder(makeRecordingWriter);
    ASSERT_TRUE(encoder.open("x.m4a", {96000, 2, 16}));
    ASSERT_TRUE(encoder.write(makeBlock(samples, 2)));
    ASSERT_TRUE(encoder.close());
    log() = Log();
    ASSERT_TRUE(encoder.open("x.m4a", {96000, 2, 16}));
    ASSERT_TRUE(encoder.write(makeBlock(QList<qint32>(2 * 100, 0), 2)));
    // Silence, give or take the dither.
    for (qsizetype i = 0; i < log().pcm.size(); i += 2)
        EXPECT_LE(std::abs(byteorder::readLittle<qint16>(log().pcm.constData() + i)), 1);
    ASSERT_TRUE(encoder.close());
}

TEST_F(AacPcmTest, ASecondFileAtARateThatIsTakenIsNotBroughtDown)
{
    AacEncoder encoder(makeRecordingWriter);
    ASSERT_TRUE(encoder.open("x.m4a", {96000, 2, 16}));
    ASSERT_TRUE(encoder.close());
    log() = Log();
    const QList<qint32> samples = audiomaker::from16(audiomaker::to16(audiomaker::noise(2 * 5000, 108)));
    ASSERT_TRUE(encoder.open("x.m4a", {48000, 2, 16}));
    ASSERT_TRUE(encoder.write(makeBlock(samples, 2)));
    ASSERT_TRUE(encoder.close());
    EXPECT_EQ(log().pcm, littleEndian(samples, 16));
}

TEST_F(AlacPcmTest, WidthFollowsTheSourceAndLowBitsAreDropped)
{
    const QList<qint32> samples = audiomaker::noise(3 * 20000, 107);
    for (const quint16 bits : QList<quint16>{8, 16})
        EXPECT_EQ(written({96000, 3, bits}, samples), littleEndian(samples, 16));
    for (const quint16 bits : QList<quint16>{17, 24, 32})
        EXPECT_EQ(written({96000, 3, bits}, samples), littleEndian(samples, 24));
    EXPECT_EQ(log().format.codec, MediaCodec::Alac);
    EXPECT_EQ(log().format.pcm, (AudioFormat{96000, 3, 24}));
}
