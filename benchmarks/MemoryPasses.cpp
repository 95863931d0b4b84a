#include "MemoryPasses.h"

#include "ChildRun.h"
#include "base/LargeMemory.h"

#include <QList>

#include <algorithm>
#include <cstdio>
#include <numeric>

int passOverMemory(int tracks, qint64 trackBytes)
{
    constexpr qsizetype piece = 32 * 1024;
    const auto count = static_cast<qsizetype>(trackBytes / 2) / piece * piece;
    QList<qint16> narrow(piece);
    std::iota(narrow.begin(), narrow.end(), qint16{0});
    QList<qint32> wide;
    reserveLarge(wide, count);
    wide.resize(count);
    const double before = ownProcessorSeconds();
    quint32 sum = 0;
    for (int track = 0; track < tracks; ++track) {
        for (auto to = wide.begin(); to != wide.end(); to += piece)
            std::transform(narrow.cbegin(), narrow.cend(), to, [](qint16 value) { return value * 65536; });
        for (auto at = wide.cbegin(); at != wide.cend(); at += piece)
            std::transform(at, at + piece, narrow.begin(),
                           [](qint32 value) { return static_cast<qint16>(value >> 16); });
        sum = std::accumulate(wide.cbegin(), wide.cend(), sum, [](quint32 total, qint32 value) {
            return total + static_cast<quint32>(value);
        });
    }
    std::printf("%.6f %u\n", ownProcessorSeconds() - before, sum);
    return 0;
}
