#pragma once

#include <QtGlobal>

#include <cstddef>
#include <random>

/// Brings left-justified 32-bit samples to 16 bits for a lossy codec, rounded and
/// on request with triangular dither of one step peak. The noise is the same for
/// every new object.
class AacDither {
public:
    /// Writes two bytes a sample, the low one first. The noise runs on from call
    /// to call, through all channels, and stands still without dither.
    void toPcm16(const qint32* samples, std::size_t count, bool dithered, quint8* target);

private:
    std::mt19937 engine{12345};
};
