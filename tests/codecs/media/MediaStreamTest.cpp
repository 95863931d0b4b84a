#include "codecs/media/MediaStream.h"

#include "codecs/DecoderRun.h"
#include "codecs/StreamDecoder.h"

struct Script {
    bool opens = true;
    int widest = 24;
    AudioFormat format{44100, 2, 24};
    std::optional<quint64> duration;
    std::vector<std::pair<MediaReader::Outcome, QList<qint32>>> steps;
    QList<int> asked;
    int alive = 0;
};

// A platform's reader that plays a written script.
struct ScriptedReader : MediaReader {
    static inline Script script;
    std::size_t step = 0;

    ScriptedReader() { ++script.alive; }
    ~ScriptedReader() override { --script.alive; }

    bool open(const std::filesystem::path&) override { return script.opens; }
    bool choosePcm(int bits) override
    {
        script.asked.append(bits);
        script.format.bitsPerSample = static_cast<quint16>(bits);
        return bits <= script.widest;
    }
    AudioFormat format() const override { return script.format; }
    std::optional<quint64> duration() const override { return script.duration; }
    Outcome read(AudioBlock& block) override
    {
        if (step == script.steps.size())
            return Outcome::End;
        const auto& [outcome, samples] = script.steps[step++];
        block = {samples, static_cast<quint64>(samples.size()) / script.format.channels};
        return outcome;
    }
};

struct ScriptedDecoder : StreamDecoder {
    ScriptedDecoder()
        : StreamDecoder([]() -> std::unique_ptr<AudioStream> {
              return std::make_unique<MediaStream>(std::make_unique<ScriptedReader>());
          })
    {
    }
};

class MediaStreamTest : public ::testing::Test {
protected:
    using Outcome = MediaReader::Outcome;

    MediaStreamTest() { script = Script(); }
    ~MediaStreamTest() override { EXPECT_EQ(script.alive, 0); }

    Script& script = ScriptedReader::script;
    std::unique_ptr<ScriptedDecoder> media = std::make_unique<ScriptedDecoder>();

    void TearDown() override { media.reset(); }
};

TEST_F(MediaStreamTest, AsksFor24BitsFirstAndThenFor16)
{
    EXPECT_TRUE(media->open("x"));
    EXPECT_EQ(script.asked, QList<int>{24});
    media->close();
    script.asked.clear();
    script.widest = 16;
    EXPECT_TRUE(media->open("x"));
    EXPECT_EQ(script.asked, (QList<int>{24, 16}));
    EXPECT_EQ(media->format(), (AudioFormat{44100, 2, 16}));
    media->close();
    script.widest = 0;
    EXPECT_FALSE(media->open("x"));
    EXPECT_EQ(script.alive, 0);
}

TEST_F(MediaStreamTest, AnUnopenableSourceOrAZeroInItsFormatIsRefused)
{
    script.opens = false;
    EXPECT_FALSE(media->open("x"));
    script.opens = true;
    for (const AudioFormat& format : {AudioFormat{0, 2, 24}, AudioFormat{44100, 0, 24}}) {
        script.format = format;
        EXPECT_FALSE(media->open("x"));
    }
    EXPECT_EQ(script.alive, 0);
}

TEST_F(MediaStreamTest, TheTotalIsTheDurationTimesTheRateCut)
{
    const std::pair<quint64, quint64> cases[] = {
        {10000000, 44100}, {9999999, 44099}, {0, 0}, {1, 0}, {227, 1}};
    for (const auto& [ticks, frames] : cases) {
        script.duration = ticks;
        ASSERT_TRUE(media->open("x"));
        EXPECT_EQ(media->totalFrames(), frames) << ticks;
        media->close();
    }
    script.duration.reset();
    ASSERT_TRUE(media->open("x"));
    EXPECT_EQ(media->totalFrames(), std::nullopt);
}

TEST_F(MediaStreamTest, BlocksArePassedOnAsTheyAre)
{
    const QList<qint32> samples = patterns({0xFF800100, 0x80007F00, 0x00000100, 0x7FFFFF00});
    script.steps = {{Outcome::Samples, samples}};
    ASSERT_TRUE(media->open("x"));
    const auto block = media->read();
    EXPECT_EQ(block->frames, 2U);
    EXPECT_EQ(block->samples, samples);
}

TEST_F(MediaStreamTest, AGapIsAnEmptyBlockAndNotTheEnd)
{
    script.steps = {{Outcome::Gap, {3, 3}}, {Outcome::Samples, {1, 1}}};
    ASSERT_TRUE(media->open("x"));
    const auto gap = media->read();
    ASSERT_TRUE(gap);
    EXPECT_EQ(gap->frames, 0u);
    EXPECT_TRUE(gap->samples.isEmpty());
    EXPECT_EQ(media->read()->frames, 1u);
    EXPECT_FALSE(media->read());
}

TEST_F(MediaStreamTest, AFailureEndsTheStreamForGood)
{
    script.steps = {{Outcome::Failure, {3, 3}}, {Outcome::Samples, {1, 1}}};
    ASSERT_TRUE(media->open("x"));
    EXPECT_FALSE(media->read());
    EXPECT_FALSE(media->read());
    media->close();
    EXPECT_FALSE(media->read());
}

TEST_F(MediaStreamTest, ASecondOpenIsRefusedAndTheFirstGoesOn)
{
    script.steps = {{Outcome::Samples, {1, 1}}};
    ASSERT_TRUE(media->open("x"));
    EXPECT_FALSE(media->open("y"));
    EXPECT_EQ(media->read()->frames, 1u);
}
