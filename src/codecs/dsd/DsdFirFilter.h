#pragma once

#include <QtGlobal>

#include <array>
#include <cstddef>

/// One channel's low-pass from one-bit DSD down to an eighth of its rate: a
/// windowed sinc of 128 taps with a gain of 1 at 0 Hz.
struct DsdFirFilter {
    static constexpr std::size_t taps = 128;

    DsdFirFilter();

    std::array<float, taps> coefficients;
    std::array<float, taps> ring{}; ///< the last bits as +1 and -1; 0 before the first
    quint32 position = 0;           ///< slot of the ring that is written next
};

/// Filters `count` bytes of one channel into as many values. Steps are counted
/// in bytes and in floats, so that interleaved channels are taken where they are.
/// Every value is the sum, in double, of coefficient 0 times the newest bit, then
/// coefficient 1 times the one before, and so on, in that order.
void decodeDsdBytes(DsdFirFilter& filter, const quint8* in, std::size_t count, bool lsbFirst, float* out,
                    std::size_t inStep, std::size_t outStep);
