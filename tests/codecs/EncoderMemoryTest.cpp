// What encoders do where memory runs out. Their allocations go through the
// operators below, which refuse them from one on.

#include "codecs/EncoderRun.h"
#include "support/AudioMaker.h"

#include <cstdlib>
#include <new>

namespace {

constexpr int withoutBound = -1;
int allocationsLeft = withoutBound;
bool refused = false;

/// Lets so many allocations through for as long as it lives.
class AllocationLimit {
public:
    explicit AllocationLimit(int count) { allocationsLeft = count; }
    ~AllocationLimit() { allocationsLeft = withoutBound; }
    AllocationLimit(const AllocationLimit&) = delete;
    AllocationLimit& operator=(const AllocationLimit&) = delete;
};

} // namespace

void* operator new(std::size_t bytes)
{
    if (allocationsLeft == 0) {
        refused = true;
        throw std::bad_alloc();
    }
    if (allocationsLeft > 0)
        --allocationsLeft;
    if (void* memory = std::malloc(bytes > 0 ? bytes : 1))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

class EncoderMemoryTest : public EncoderTest, public ::testing::WithParamInterface<EncoderId> {
protected:
    enum Step { Opening, Writing, Closing };

    /// One encoder's whole life, of which a step gets so many allocations. True
    /// only if all of it succeeded.
    bool encodes(Step scarce, int allocations)
    {
        const auto within = [&](Step step, const auto& action) {
            const AllocationLimit limit(step == scarce ? allocations : withoutBound);
            return action();
        };
        const auto encoder = makeEncoder(GetParam());
        bool opened = false;
        bool written = false;
        bool closed = false;
        EXPECT_NO_THROW(opened = within(Opening, [&] { return encoder->open(path, stereo); }));
        EXPECT_NO_THROW(written = within(Writing, [&] { return encoder->write(block); }));
        EXPECT_NO_THROW(closed = within(Closing, [&] { return encoder->close(); }));
        EXPECT_FALSE(opened && refused && closed) << "a file that lost audio is not whole";
        return opened && written && closed;
    }

    const AudioFormat stereo{44100, 2, 16};
    const AudioBlock block = makeBlock(audiomaker::noise(20000, 1), 2);
    const std::filesystem::path path = toPath(file("track"));
};

TEST_P(EncoderMemoryTest, WantOfMemoryIsAFailureAndNoException)
{
    constexpr int many = 1000;
    ASSERT_TRUE(encodes(Opening, withoutBound));
    for (const Step step : {Opening, Writing, Closing}) {
        const auto before = openFileCount();
        int allocations = 0;
        do {
            refused = false;
            const bool whole = encodes(step, allocations);
            EXPECT_EQ(whole, !refused) << step << ' ' << allocations;
        } while (refused && ++allocations < many);
        EXPECT_LT(allocations, many);
        EXPECT_EQ(openFileCount(), before);
    }
}

// Buffers that a block would have brought may be missing still.
TEST_P(EncoderMemoryTest, TheEndOfAFileWithoutAudioMayLackMemory)
{
    const auto encoder = makeEncoder(GetParam());
    ASSERT_TRUE(encoder->open(path, stereo));
    refused = false;
    bool closed = false;
    {
        const AllocationLimit none(0);
        EXPECT_NO_THROW(closed = encoder->close());
    }
    EXPECT_EQ(closed, !refused);
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
