// How fast the checksums of a track go over memory, beside the plainest pass that
// reads the same words.

#include "Measure.h"
#include "Options.h"
#include "verify/AccurateRip.h"

#include <QCoreApplication>

#include <cstdio>
#include <ctime>
#include <numeric>

namespace {

constexpr qsizetype valuesPerMinute = 60 * 44'100 * 2;

/// Of this thread, so that other work on the machine does not count.
double processorSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// 16-bit values in the upper half, as a rip holds them; any will do for the speed.
QList<int> makeSamples(qsizetype count)
{
    QList<int> samples(count);
    quint32 state = 1;
    for (int& value : samples) {
        state = state * 1'664'525 + 1'013'904'223;
        value = static_cast<int>(state & 0xFFFF0000);
    }
    return samples;
}

quint32 plainSum(const QList<int>& samples)
{
    return std::accumulate(samples.cbegin(), samples.cend(), quint32{0},
                           [](quint32 sum, int value) { return sum + static_cast<quint32>(value); });
}

quint32 bothChecksums(const QList<int>& samples)
{
    quint32 crcV1 = 0;
    quint32 crcV2 = 0;
    accurateRipCrc(samples, 2, 3, crcV1, crcV2); // neither first nor last: every frame counts
    return crcV1 ^ crcV2;
}

volatile quint32 kept = 0; ///< keeps the results from being left out

double secondsOf(quint32 (*pass)(const QList<int>&), const QList<int>& samples)
{
    const double before = processorSeconds();
    kept = pass(samples);
    return processorSeconds() - before;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    int minutes = 48;
    int pairs = 9;
    Options options;
    options.number("minutes", "Minutes of audio.", minutes);
    options.number("pairs", "Pairs of passes.", pairs);
    options.read(application);

    const QList<int> samples = makeSamples(minutes * valuesPerMinute);
    QList<double> ours;
    QList<double> plain;
    for (int pair = 0; pair < pairs; ++pair) {
        ours.append(secondsOf(bothChecksums, samples));
        plain.append(secondsOf(plainSum, samples));
    }
    printHead();
    const bool holds = printRow({QStringLiteral("checksums of %1 minutes").arg(minutes),
                                 QStringLiteral("plain sum over memory"), QStringLiteral("s")},
                                ours, plain, bounds::checksums);
    const double gigabytes = static_cast<double>(samples.size()) * sizeof(int) * 1e-9;
    printNote(QStringLiteral("throughput of the checksums"), QStringLiteral("GB/s"),
              gigabytes / median(ours));
    return holds ? 0 : 1;
}
