#pragma once

#include "codecs/AudioFormat.h"

#include <vector>

/// Lowers the sample rate by a whole number, for a codec that takes no high
/// rates: a Kaiser-windowed sinc of 64 taps a factor, plus 1, with a gain of 1 at
/// 0 Hz. The filter's delay stays in, and its tail never comes out. History runs
/// across blocks.
class AacDecimator {
public:
    /// @param factor  input rate divided by output rate, 2 or more
    AacDecimator(int channels, int factor);

    /// One frame for every `factor` frames that came in since the last one. Each
    /// value is the sum, in double, of the first coefficient times the oldest
    /// sample, then the next times the next, and so on, in that order.
    AudioBlock run(const AudioBlock& block);

private:
    double* row(int channel, int place);
    void store(const qint32* samples, int frames);
    void sumUp(int periods, qint32* out);
    void keepPast(int periods);

    int channels;
    int factor;
    int phase = 0; ///< frames since the last output
    std::vector<double> coefficients;
    std::vector<double> rows;
};
