#include "codecs/StreamDecoder.h"

#include "codecs/AudioStream.h"

#include <gtest/gtest.h>

#include <new>

namespace {

/// What the streams of a test do, and how many of them there are.
struct Script {
    bool opens = true;
    bool throwsAtOpen = false;
    AudioFormat format{48000, 1, 24};
    std::optional<quint64> total = 7;
    int blocks = 2;
    int throwsAt = -1; ///< the number of a read
    int reads = 0;
    int alive = 0;
};

class ScriptedStream : public AudioStream {
public:
    static inline Script script;

    ScriptedStream() { ++script.alive; }
    ~ScriptedStream() override { --script.alive; }

    bool open(const std::filesystem::path&) override
    {
        pcm = script.format;
        total = script.total;
        if (script.throwsAtOpen)
            throw std::bad_alloc();
        return script.opens;
    }
    std::optional<AudioBlock> read() override
    {
        const int number = script.reads++;
        if (number == script.throwsAt)
            throw std::bad_alloc();
        return number < script.blocks ? std::optional(AudioBlock{{number}, 1}) : std::nullopt;
    }
};

class ScriptedDecoder : public StreamDecoder {
public:
    explicit ScriptedDecoder(std::optional<quint64> unopenedTotal = std::nullopt)
        : StreamDecoder([]() -> std::unique_ptr<AudioStream> { return std::make_unique<ScriptedStream>(); },
                        unopenedTotal)
    {
    }
};

class StreamDecoderTest : public ::testing::Test {
protected:
    StreamDecoderTest() { script = Script(); }

    Script& script = ScriptedStream::script;
    ScriptedDecoder decoder;
};

} // namespace

TEST_F(StreamDecoderTest, BeforeTheFirstOpenThereIsADefaultFormatAndNothingToRead)
{
    EXPECT_EQ(decoder.format(), (AudioFormat{44100, 2, 16}));
    EXPECT_EQ(decoder.totalFrames(), std::nullopt);
    EXPECT_EQ(ScriptedDecoder(0).totalFrames(), 0u);
    EXPECT_FALSE(decoder.read());
    EXPECT_EQ(script.alive, 0);
}

TEST_F(StreamDecoderTest, TheFactsOfAFileOutlastItsClose)
{
    ASSERT_TRUE(decoder.open("x"));
    decoder.close();
    EXPECT_EQ(script.alive, 0);
    EXPECT_EQ(decoder.format(), script.format);
    EXPECT_EQ(decoder.totalFrames(), 7u);
    EXPECT_FALSE(decoder.read());
}

TEST_F(StreamDecoderTest, ARefusedFileLeavesNothingBehind)
{
    script.opens = false;
    EXPECT_FALSE(decoder.open("x"));
    EXPECT_EQ(script.alive, 0);
    EXPECT_EQ(decoder.format(), (AudioFormat{44100, 2, 16}));
    EXPECT_EQ(decoder.totalFrames(), std::nullopt);
    EXPECT_FALSE(decoder.read());
}

TEST_F(StreamDecoderTest, AnExceptionWhileOpeningIsARefusal)
{
    script.throwsAtOpen = true;
    bool opened = true;
    EXPECT_NO_THROW(opened = decoder.open("x"));
    EXPECT_FALSE(opened);
    EXPECT_EQ(script.alive, 0);
    EXPECT_EQ(decoder.format(), (AudioFormat{44100, 2, 16}));
    script.throwsAtOpen = false;
    EXPECT_TRUE(decoder.open("x"));
}

TEST_F(StreamDecoderTest, AFileThatIsRefusedAfterAnotherLeavesTheFactsOfThat)
{
    ASSERT_TRUE(decoder.open("x"));
    decoder.close();
    script.opens = false;
    script.format.channels = 5;
    EXPECT_FALSE(decoder.open("y"));
    EXPECT_EQ(decoder.format(), (AudioFormat{48000, 1, 24}));
    EXPECT_EQ(decoder.totalFrames(), 7u);
    EXPECT_FALSE(decoder.read());
}

TEST_F(StreamDecoderTest, ASecondOpenIsRefusedAndTheFirstFileGoesOn)
{
    ASSERT_TRUE(decoder.open("x"));
    script.format.channels = 5;
    EXPECT_FALSE(decoder.open("y"));
    EXPECT_EQ(script.alive, 1);
    EXPECT_EQ(decoder.format().channels, 1);
    EXPECT_TRUE(decoder.read());
}

TEST_F(StreamDecoderTest, NobodyIsAskedBehindTheEnd)
{
    ASSERT_TRUE(decoder.open("x"));
    EXPECT_EQ(decoder.read()->samples, QList<qint32>{0});
    EXPECT_EQ(decoder.read()->samples, QList<qint32>{1});
    EXPECT_FALSE(decoder.read());
    script.blocks = 10;
    EXPECT_FALSE(decoder.read());
    EXPECT_EQ(script.reads, 3);
}

TEST_F(StreamDecoderTest, AnExceptionIsTheEnd)
{
    script.throwsAt = 1;
    ASSERT_TRUE(decoder.open("x"));
    EXPECT_TRUE(decoder.read());
    EXPECT_FALSE(decoder.read());
    EXPECT_FALSE(decoder.read());
    EXPECT_EQ(script.reads, 2);
}

TEST_F(StreamDecoderTest, ANewFileIsReadAfterTheEndOfAnother)
{
    ASSERT_TRUE(decoder.open("x"));
    while (decoder.read()) {
    }
    decoder.close();
    script.reads = 0;
    ASSERT_TRUE(decoder.open("y"));
    EXPECT_TRUE(decoder.read());
}
