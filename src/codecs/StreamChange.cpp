#include "codecs/StreamChange.h"

#include <QDebug>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <vector>

namespace {

enum Speaker : quint8 {
    FrontLeft,
    FrontRight,
    FrontCentre,
    Low,
    BackLeft,
    BackRight,
    BackCentre,
    SideLeft,
    SideRight
};

using Speakers = std::vector<Speaker>;

/// By the number of channels, in WAVE order; beyond eight nobody knows.
const Speakers& speakersOf(quint16 channels)
{
    static const std::array<Speakers, 9> usual{
        Speakers{},
        Speakers{FrontCentre},
        Speakers{FrontLeft, FrontRight},
        Speakers{FrontLeft, FrontRight, FrontCentre},
        Speakers{FrontLeft, FrontRight, BackLeft, BackRight},
        Speakers{FrontLeft, FrontRight, FrontCentre, BackLeft, BackRight},
        Speakers{FrontLeft, FrontRight, FrontCentre, Low, BackLeft, BackRight},
        Speakers{FrontLeft, FrontRight, FrontCentre, Low, BackCentre, SideLeft, SideRight},
        Speakers{FrontLeft, FrontRight, FrontCentre, Low, BackLeft, BackRight, SideLeft, SideRight},
    };
    return usual[channels < usual.size() ? channels : 0];
}

/// How much of each old channel goes into each new one.
class Mix {
public:
    Mix(quint16 from, quint16 to) : oldCount(from), newCount(to), gains(std::size_t{from} * to)
    {
        const Speakers& sources = speakersOf(from);
        const Speakers& targets = speakersOf(to);
        const bool known = !sources.empty() && !targets.empty();
        for (old = 0; old < from; ++old) {
            if (known)
                place(sources[old], 1.0, targets);
            else if (old < to)
                gains[old * from + old] = 1.0;
        }
        limit();
    }

    double value(const qint32* frame, std::size_t target) const
    {
        double sum = 0.0;
        for (std::size_t source = 0; source < oldCount; ++source)
            sum += gains[target * oldCount + source] * frame[source];
        return sum;
    }

private:
    void place(Speaker speaker, double gain, const Speakers& targets)
    {
        constexpr double halfThePower = std::numbers::sqrt2 / 2;
        const auto found = std::find(targets.begin(), targets.end(), speaker);
        if (found != targets.end()) {
            gains[static_cast<std::size_t>(found - targets.begin()) * oldCount + old] += gain;
            return;
        }
        const bool hasSides = std::find(targets.begin(), targets.end(), SideLeft) != targets.end();
        const bool hasBack = std::find(targets.begin(), targets.end(), BackLeft) != targets.end();
        const double behind = hasSides || hasBack ? gain : gain * halfThePower;
        switch (speaker) {
        case FrontLeft:
        case FrontRight:
            return place(FrontCentre, gain / 2, targets);
        case FrontCentre:
            // Alone it is the whole of the sound, and stays as loud in both ears.
            place(FrontLeft, oldCount == 1 ? gain : gain * halfThePower, targets);
            return place(FrontRight, oldCount == 1 ? gain : gain * halfThePower, targets);
        case BackLeft:
            return place(hasSides ? SideLeft : FrontLeft, behind, targets);
        case BackRight:
            return place(hasSides ? SideRight : FrontRight, behind, targets);
        case SideLeft:
            return place(hasBack ? BackLeft : FrontLeft, behind, targets);
        case SideRight:
            return place(hasBack ? BackRight : FrontRight, behind, targets);
        case BackCentre:
            place(BackLeft, gain * halfThePower, targets);
            return place(BackRight, gain * halfThePower, targets);
        case Low:
            return;
        }
    }

    void limit()
    {
        double largest = 1.0;
        for (std::size_t target = 0; target < newCount; ++target) {
            double sum = 0.0;
            for (std::size_t source = 0; source < oldCount; ++source)
                sum += gains[target * oldCount + source];
            largest = std::max(largest, sum);
        }
        for (double& gain : gains)
            gain /= largest;
    }

    std::size_t oldCount;
    std::size_t newCount;
    std::size_t old = 0;       ///< the channel that is being placed
    std::vector<double> gains; ///< a row for each new channel
};

} // namespace

AudioBlock mapChannels(const AudioBlock& block, quint16 from, quint16 to, int bits)
{
    const double step = std::ldexp(1.0, 32 - bits);
    const double highest = std::ldexp(1.0, bits - 1) - 1;
    const Mix mix(from, to);
    AudioBlock mapped{QList<qint32>(static_cast<qsizetype>(block.frames * to)), block.frames};
    const qint32* frame = block.samples.constData();
    qint32* target = mapped.samples.data();
    for (quint64 i = 0; i < block.frames; ++i, frame += from) {
        for (std::size_t channel = 0; channel < to; ++channel) {
            const double value = std::clamp(mix.value(frame, channel) / step, -highest - 1, highest);
            *target++ = static_cast<qint32>(std::nearbyint(value) * step);
        }
    }
    return mapped;
}

void reportRateChange(quint32 from, quint32 to)
{
    qWarning() << "[Decode] rate changes from" << from << "to" << to << "Hz -> the rest is left out";
}
