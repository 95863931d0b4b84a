#include "codecs/media/AacDither.h"

#include "base/ByteOrder.h"
#include "support/AudioMaker.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <vector>

namespace {

constexpr qint32 highest = std::numeric_limits<qint32>::max();
constexpr qint32 lowest = std::numeric_limits<qint32>::min();

// The generator by its published recurrence.
class Twister {
public:
    explicit Twister(quint32 seed)
    {
        state[0] = seed;
        for (quint32 i = 1; i < size; ++i)
            state[i] = 1812433253u * (state[i - 1] ^ (state[i - 1] >> 30)) + i;
    }

    quint32 next()
    {
        const quint32 joined = (state[place] & 0x80000000u) | (state[(place + 1) % size] & 0x7FFFFFFFu);
        state[place] = state[(place + 397) % size] ^ (joined >> 1) ^ ((joined & 1u) ? 0x9908B0DFu : 0u);
        quint32 value = state[place];
        place = (place + 1) % size;
        value ^= value >> 11;
        value ^= (value << 7) & 0x9D2C5680u;
        value ^= (value << 15) & 0xEFC60000u;
        return value ^ (value >> 18);
    }

private:
    static constexpr quint32 size = 624;
    std::array<quint32, size> state{};
    quint32 place = 0;
};

qint16 cut(qint64 sample)
{
    const qint64 rounded = (sample + 32768) >> 16;
    return static_cast<qint16>(std::max<qint64>(-32768, std::min<qint64>(32767, rounded)));
}

QList<qint16> dithered(AacDither& dither, const QList<qint32>& samples, bool on)
{
    std::vector<quint8> bytes(static_cast<std::size_t>(samples.size()) * 2);
    dither.toPcm16(samples.constData(), static_cast<std::size_t>(samples.size()), on, bytes.data());
    QList<qint16> values;
    for (std::size_t i = 0; i < bytes.size(); i += 2)
        values.append(byteorder::readLittle<qint16>(bytes.data() + i));
    return values;
}

} // namespace

TEST(AacDither, TheTestsGeneratorIsTheStandardOne)
{
    Twister twister(5489);
    for (int i = 1; i < 10000; ++i)
        twister.next();
    EXPECT_EQ(twister.next(), 4123659995u); // the value that the C++ standard demands
}

TEST(AacDither, NoiseIsTheDifferenceOfTwoDrawsASample)
{
    const QList<qint32> samples = audiomaker::noise(5000, 70);
    Twister twister(12345);
    QList<qint16> expected;
    for (const qint32 sample : samples) {
        const qint64 a = twister.next() >> 16;
        const qint64 b = twister.next() >> 16;
        expected.append(cut(qint64{sample} + a - b));
    }
    AacDither dither;
    EXPECT_EQ(dithered(dither, samples, true), expected);
}

TEST(AacDither, NoiseRunsOnFromCallToCallAndStandsStillWithoutDither)
{
    const QList<qint32> samples = audiomaker::noise(3000, 71);
    AacDither whole;
    const QList<qint16> expected = dithered(whole, samples, true);
    AacDither parts;
    QList<qint16> joined = dithered(parts, samples.mid(0, 1001), true);
    dithered(parts, samples, false);
    joined += dithered(parts, samples.mid(1001), true);
    EXPECT_EQ(joined, expected);
}

TEST(AacDither, NoiseStaysBelowOneStepAndHasATriangularSpread)
{
    AacDither dither;
    const QList<qint16> values = dithered(dither, QList<qint32>(200000, 100 << 16), true);
    EXPECT_EQ(*std::min_element(values.begin(), values.end()), 99);
    EXPECT_EQ(*std::max_element(values.begin(), values.end()), 101);
    // Of a triangle from -1 to 1, an eighth lies beyond one half on each side.
    EXPECT_NEAR(static_cast<double>(values.count(99)) / 200000, 0.125, 0.005);
    EXPECT_NEAR(static_cast<double>(values.count(101)) / 200000, 0.125, 0.005);
}

TEST(AacDither, SixteenBitSamplesPassUnchangedWithoutDither)
{
    QList<qint16> values;
    for (int value = -32768; value <= 32767; ++value)
        values.append(static_cast<qint16>(value));
    AacDither dither;
    EXPECT_EQ(dithered(dither, audiomaker::from16(values), false), values);
}

TEST(AacDither, WiderSamplesAreRoundedAndHeldAtFullScale)
{
    AacDither dither;
    EXPECT_EQ(
        dithered(dither, {0x7FFF, 0x8000, -0x8000, -0x8001, highest, lowest, 0x7FFF7FFF, 0x7FFF8000}, false),
        (QList<qint16>{0, 1, 0, -1, 32767, -32768, 32767, 32767}));
}

TEST(AacDither, FullScaleWithNoiseStaysThere)
{
    AacDither dither;
    const QList<qint16> up = dithered(dither, QList<qint32>(10000, highest), true);
    EXPECT_EQ(*std::max_element(up.begin(), up.end()), 32767);
    EXPECT_GE(*std::min_element(up.begin(), up.end()), 32766);
    const QList<qint16> down = dithered(dither, QList<qint32>(10000, lowest), true);
    EXPECT_EQ(*std::min_element(down.begin(), down.end()), -32768);
    EXPECT_LE(*std::max_element(down.begin(), down.end()), -32767);
}
