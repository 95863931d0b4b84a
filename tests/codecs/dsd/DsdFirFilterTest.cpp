#include "codecs/dsd/DsdFirFilter.h"
#include "codecs/FloatSample.h"
#include "codecs/dsd/PlainDsdFilter.h"
#include "support/AudioMaker.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <complex>
#include <numbers>

static std::vector<quint8> noiseBytes(quint64 count, quint32 seed)
{
    std::vector<quint8> bytes;
    for (const qint32 value : audiomaker::noise(count, seed))
        bytes.push_back(static_cast<quint8>(value >> 24));
    return bytes;
}

TEST(DsdFirFilter, CoefficientsAreSymmetricAndSumToOne)
{
    const DsdFirFilter filter;
    double sum = 0;
    for (std::size_t i = 0; i < 128; ++i) {
        EXPECT_EQ(filter.coefficients[i], filter.coefficients[127 - i]) << i;
        sum += double{filter.coefficients[i]};
    }
    EXPECT_NEAR(sum, 1.0, 1e-6);
    EXPECT_NEAR(filter.coefficients[63], 0.12417, 0.000005);
    EXPECT_NEAR(filter.coefficients[0], -0.0000023, 0.00000005);
}

TEST(DsdFirFilter, CoefficientsAgreeWithThePlainDesignBitForBit)
{
    const DsdFirFilter filter;
    const PlainDsdFilter plain;
    for (std::size_t i = 0; i < 128; ++i)
        EXPECT_EQ(std::bit_cast<quint32>(filter.coefficients[i]),
                  std::bit_cast<quint32>(plain.coefficients[i]));
    EXPECT_EQ(filter.position, 0u);
    EXPECT_EQ(filter.ring[0], 0.0f);
}

// Calls of every size in a row: the history runs on across them, the ring ends
// where a ring written bit by bit ends.
TEST(DsdFirFilter, AgreesWithThePlainLoopBitForBitAcrossCallsOfAnySize)
{
    constexpr std::size_t counts[] = {1, 2, 7, 15, 16, 17, 31, 100, 127, 128, 129, 1000, 4096, 3, 0, 5};
    for (const bool lsbFirst : {false, true}) {
        DsdFirFilter filter;
        PlainDsdFilter plain;
        quint32 seed = 1;
        for (const std::size_t count : counts) {
            const std::vector<quint8> bytes = noiseBytes(count, seed++);
            std::vector<float> values(count);
            decodeDsdBytes(filter, bytes.data(), count, lsbFirst, values.data(), 1, 1);
            for (std::size_t i = 0; i < count; ++i)
                ASSERT_EQ(std::bit_cast<quint32>(values[i]),
                          std::bit_cast<quint32>(plain.feed(bytes[i], lsbFirst)))
                    << count << " " << i;
            ASSERT_EQ(filter.position, plain.position);
            for (std::size_t i = 0; i < 128; ++i)
                ASSERT_EQ(filter.ring[i], plain.ring[i]);
        }
    }
}

TEST(DsdFirFilter, StepsPickAChannelAndLeaveTheOthersAlone)
{
    const std::vector<quint8> bytes = noiseBytes(3 * 200, 5);
    std::vector<float> values(2 * 200, 9.0f);
    DsdFirFilter filter;
    decodeDsdBytes(filter, bytes.data() + 1, 200, false, values.data() + 1, 3, 2);
    PlainDsdFilter plain;
    for (std::size_t i = 0; i < 200; ++i) {
        EXPECT_EQ(values[2 * i], 9.0f);
        EXPECT_EQ(values[2 * i + 1], plain.feed(bytes[3 * i + 1], false));
    }
}

TEST(DsdFirFilter, NoBytesDoNothing)
{
    DsdFirFilter filter;
    decodeDsdBytes(filter, nullptr, 0, false, nullptr, 1, 1);
    EXPECT_EQ(filter.position, 0u);
    EXPECT_EQ(filter.ring, DsdFirFilter().ring);
}

TEST(DsdFirFilter, ConstantBytesSettleAtFullScaleOfBothSigns)
{
    for (const auto& [byte, settled] : {std::pair<quint8, float>{0xFF, 1.0f}, {0x00, -1.0f}}) {
        DsdFirFilter filter;
        const std::vector<quint8> bytes(64, byte);
        std::vector<float> values(64);
        decodeDsdBytes(filter, bytes.data(), 64, false, values.data(), 1, 1);
        EXPECT_NEAR(values.back(), settled, 1e-6f);
        EXPECT_LT(std::abs(values.front()), 0.1f); // still meets the zeroes before the start
    }
}

TEST(DsdFirFilter, AlternatingBitsSettleNearZero)
{
    for (const quint8 byte : {quint8{0x55}, quint8{0xAA}}) {
        DsdFirFilter filter;
        const std::vector<quint8> bytes(64, byte);
        std::vector<float> values(64);
        decodeDsdBytes(filter, bytes.data(), 64, false, values.data(), 1, 1);
        EXPECT_NEAR(values.back(), 0.0f, 1e-4f);
    }
}

TEST(DsdSample, FullScaleUpWrapsAndDownStays)
{
    EXPECT_EQ(sampleFromFloat(1.0f), INT32_MIN);
    EXPECT_EQ(sampleFromFloat(1.5f), INT32_MIN);
    EXPECT_EQ(sampleFromFloat(-1.0f), INT32_MIN);
    EXPECT_EQ(sampleFromFloat(-7.0f), INT32_MIN);
    EXPECT_EQ(sampleFromFloat(0.5f), 0x40000000);
    EXPECT_EQ(sampleFromFloat(-0.25f), -0x20000000);
    EXPECT_EQ(sampleFromFloat(0.0f), 0);
    // The largest float below 1 has 24 bits.
    EXPECT_EQ(sampleFromFloat(std::nextafter(1.0f, 0.0f)), 0x7FFFFF80);
    // Cut, not rounded, towards zero.
    EXPECT_EQ(sampleFromFloat(1.9f / 2147483648.0f), 1);
    EXPECT_EQ(sampleFromFloat(-1.9f / 2147483648.0f), -1);
}

// A tone through a second-order sigma-delta modulator, whose noise has a known
// power: (4 / 12) * pi^4 / 5 * (2 * bandwidth / rate)^5.
TEST(DsdFirFilter, AToneKeepsItsLevelAndTheNoiseIsWhereTheoryPutsIt)
{
    constexpr double rate = 2822400;
    constexpr int settle = 64;
    constexpr int measured = 17640; // 50 periods of 1 kHz at 352.8 kHz
    constexpr double height = 0.5;
    std::vector<quint8> bytes(settle + measured);
    double first = 0;
    double second = 0;
    for (std::size_t i = 0; i < 8 * bytes.size(); ++i) {
        const double tone = height * std::sin(2 * std::numbers::pi * 1000 * static_cast<double>(i) / rate);
        const double bit = second >= 0 ? 1 : -1;
        first += tone - bit;
        second += first - bit;
        bytes[i / 8] = static_cast<quint8>(bytes[i / 8] << 1 | (bit > 0 ? 1 : 0));
    }
    DsdFirFilter filter;
    std::vector<float> values(bytes.size());
    decodeDsdBytes(filter, bytes.data(), bytes.size(), false, values.data(), 1, 1);

    double noise = 0;
    for (int bin = 1; bin <= 1000; ++bin) { // 20 Hz apart
        const std::complex<double> turn = std::polar(1.0, -2 * std::numbers::pi * bin / measured);
        std::complex<double> phase = 1;
        std::complex<double> sum = 0;
        for (int i = 0; i < measured; ++i, phase *= turn)
            sum += phase * double{values[static_cast<std::size_t>(settle + i)]};
        const double amplitude = 2 * std::abs(sum) / measured;
        if (bin == 50)
            EXPECT_NEAR(20 * std::log10(amplitude / height), 0.0, 0.1);
        else
            noise += amplitude * amplitude / 2;
    }
    const double theory = 4.0 / 12 * std::pow(std::numbers::pi, 4) / 5 * std::pow(40000 / rate, 5);
    EXPECT_NEAR(10 * std::log10(noise / theory), 0.0, 6.0) << 10 * std::log10(noise);
}
