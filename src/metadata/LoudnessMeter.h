#pragma once

#include <QList>
#include <QtGlobal>

#include <vector>

/// Loudness of one track after ITU-R BS.1770 and EBU R 128: K-weighted mean
/// squares of 400 ms gating blocks that begin every 100 ms. All channels weigh
/// the same. One pass; memory grows by two doubles each 100 ms.
class LoudnessMeter {
public:
    /// @param sampleRate  frames a second; the filters take 0 for 44100, and below
    ///                    10 each frame counts as 100 ms
    /// @param channels    fewer than 1 count as 1
    LoudnessMeter(quint32 sampleRate, int channels);

    /// @param samples  interleaved, full scale at 2^31
    void add(const qint32* samples, quint64 frames);

    /// Closes a measurement of less than 400 ms, which then is one gating block.
    void finish();

    /// Integrated loudness in LUFS; -70.0 for silence.
    double gatedLoudness() const;

    QList<double> gated; ///< mean squares of the gating blocks so far
    double peak = 0.0;   ///< largest absolute sample; full scale is 1.0

private:
    struct Biquad {
        double b0 = 0.0, b1 = 0.0, b2 = 0.0, a1 = 0.0, a2 = 0.0;
    };
    /// Both stages' memory of two neighbouring channels, which run side by side.
    struct ChannelPair {
        double shelfZ1[2] = {}, shelfZ2[2] = {};
        double highPassZ1[2] = {}, highPassZ2[2] = {};

        bool operator==(const ChannelPair&) const = default;
    };

    template<int fixedChannels>
    void filter(const qint32* samples, quint64 count);
    void filterAny(const qint32* samples, quint64 count);
    bool isSettledIn(const qint32* samples, quint64 count);
    void finishBlock();

    int channels;
    quint64 hop; ///< frames in 100 ms
    Biquad shelf;
    Biquad highPass;
    std::vector<ChannelPair> pairs;
    QList<double> blocks; ///< mean squares of the finished 100 ms
    double energy = 0.0;
    quint64 frames = 0; ///< of the running 100 ms
};

/// Gated loudness in LUFS of any list of gating blocks, such as those of all
/// tracks of an album joined; -70.0 when nothing passes the gates.
double integratedLoudness(const QList<double>& blocks);

/// What brings audio of a loudness to the reference of -18 LUFS, in dB.
double replayGainFor(double loudness);
