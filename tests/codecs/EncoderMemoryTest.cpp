// What encoders do where memory runs out.

#include "codecs/EncoderRun.h"
#include "codecs/ScarceMemory.h"
#include "support/AudioMaker.h"
#include "support/OpenFiles.h"

class EncoderMemoryTest : public EncoderTest, public ::testing::WithParamInterface<EncoderId> {
protected:
    enum Step { Opening, Writing, Closing };

    /// One encoder's whole life, of which a step gets so many allocations. True
    /// only if all of it succeeded.
    bool encodes(Step scarce, int allocations)
    {
        const auto within = [&](Step step, const auto& action) {
            const AllocationLimit limit(step == scarce ? allocations : AllocationLimit::withoutBound);
            return action();
        };
        const auto encoder = makeEncoder(GetParam());
        bool opened = false;
        bool written = false;
        bool closed = false;
        EXPECT_NO_THROW(opened = within(Opening, [&] { return encoder->open(path, stereo); }));
        EXPECT_NO_THROW(written = within(Writing, [&] { return encoder->write(block); }));
        EXPECT_NO_THROW(closed = within(Closing, [&] { return encoder->close(); }));
        EXPECT_FALSE(opened && AllocationLimit::refused && closed) << "a file that lost audio is not whole";
        return opened && written && closed;
    }

    const AudioFormat stereo{44100, 2, 16};
    const AudioBlock block = makeBlock(audiomaker::noise(20000, 1), 2);
    const std::filesystem::path path = toPath(file("track"));
};

TEST_P(EncoderMemoryTest, WantOfMemoryIsAFailureAndNoException)
{
    constexpr int many = 1000;
    ASSERT_TRUE(encodes(Opening, AllocationLimit::withoutBound));
    for (const Step step : {Opening, Writing, Closing}) {
        const auto before = openFileCount();
        int allocations = 0;
        do {
            AllocationLimit::refused = false;
            const bool whole = encodes(step, allocations);
            EXPECT_EQ(whole, !AllocationLimit::refused) << step << ' ' << allocations;
        } while (AllocationLimit::refused && ++allocations < many);
        EXPECT_LT(allocations, many);
        EXPECT_EQ(openFileCount(), before);
    }
}

// Buffers that a block would have brought may be missing still.
TEST_P(EncoderMemoryTest, TheEndOfAFileWithoutAudioMayLackMemory)
{
    const auto encoder = makeEncoder(GetParam());
    ASSERT_TRUE(encoder->open(path, stereo));
    AllocationLimit::refused = false;
    bool closed = false;
    {
        const AllocationLimit none(0);
        EXPECT_NO_THROW(closed = encoder->close());
    }
    EXPECT_EQ(closed, !AllocationLimit::refused);
}

TEST_P(EncoderMemoryTest, TheNextFileIsWholeAgain)
{
    const QByteArray expected = encode(GetParam(), file("fresh"), stereo, block.samples);
    const auto encoder = makeEncoder(GetParam());
    for (const int allocations : {0, 1, 2}) {
        ASSERT_TRUE(encoder->open(path, stereo));
        {
            const AllocationLimit limit(allocations);
            static_cast<void>(encoder->write(block));
        }
        static_cast<void>(encoder->close());
    }
    ASSERT_TRUE(encoder->open(path, stereo));
    EXPECT_TRUE(encoder->write(block));
    EXPECT_TRUE(encoder->close());
    EXPECT_EQ(readAll(file("track")), expected);
}

static std::string nameOf(const ::testing::TestParamInfo<EncoderId>& instance)
{
    constexpr const char* names[] = {"Wav", "Flac", "Mp3", "Aiff", "Aac", "Alac"};
    return names[instance.param];
}

INSTANTIATE_TEST_SUITE_P(All, EncoderMemoryTest,
                         ::testing::Values(WavEncoderId, FlacEncoderId, Mp3EncoderId, AiffEncoderId,
                                           AacEncoderId, AlacEncoderId),
                         nameOf);
