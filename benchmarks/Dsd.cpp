// Filters one-bit audio with the program's filter and with the plain loop of its
// definition, in one process and in turn.

#include "ChildRun.h"
#include "Measure.h"
#include "Options.h"
#include "codecs/dsd/DsdFirFilter.h"
#include "codecs/dsd/PlainDsdFilter.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <random>
#include <vector>

namespace {

constexpr std::size_t bytesOfASecond = 2822400 / 8;
constexpr std::size_t blockBytes = 4096;

/// Channels side by side, or one behind the other in blocks.
struct Layout {
    const char* name;
    std::size_t channels;
    bool runs;
    bool lsbFirst;

    std::size_t byteStep() const { return runs ? 1 : channels; }
    std::size_t start(std::size_t block, std::size_t channel) const
    {
        return block * blockBytes * channels + channel * (runs ? blockBytes : 1);
    }
};

using Floats = std::vector<float>;

void filterOurs(const Layout& layout, const std::vector<quint8>& bytes, Floats& out)
{
    std::vector<DsdFirFilter> filters(layout.channels);
    for (std::size_t block = 0; block < bytes.size() / blockBytes / layout.channels; ++block) {
        for (std::size_t channel = 0; channel < layout.channels; ++channel)
            decodeDsdBytes(filters[channel], bytes.data() + layout.start(block, channel), blockBytes,
                           layout.lsbFirst, out.data() + block * blockBytes * layout.channels + channel,
                           layout.byteStep(), layout.channels);
    }
}

void filterPlain(const Layout& layout, const std::vector<quint8>& bytes, Floats& out)
{
    std::vector<PlainDsdFilter> filters(layout.channels);
    for (std::size_t block = 0; block < bytes.size() / blockBytes / layout.channels; ++block) {
        for (std::size_t channel = 0; channel < layout.channels; ++channel) {
            const quint8* in = bytes.data() + layout.start(block, channel);
            float* target = out.data() + block * blockBytes * layout.channels + channel;
            for (std::size_t i = 0; i < blockBytes; ++i)
                target[i * layout.channels] =
                    filters[channel].feed(in[i * layout.byteStep()], layout.lsbFirst);
        }
    }
}

/// Whether both gave the same bits.
bool measure(const Layout& layout, int pairs)
{
    std::mt19937 random(1);
    std::vector<quint8> bytes(bytesOfASecond / blockBytes * blockBytes * layout.channels);
    std::generate(bytes.begin(), bytes.end(), [&random] { return static_cast<quint8>(random()); });
    Floats ours(bytes.size());
    Floats plain(bytes.size());
    const auto costs =
        runInTurn(pairs, {[&] { return processorCost([&] { filterOurs(layout, bytes, ours); }); },
                          [&] { return processorCost([&] { filterPlain(layout, bytes, plain); }); }});
    printRow({QStringLiteral("DSD, %1").arg(QLatin1String(layout.name)), QStringLiteral("plain loop"),
              QStringLiteral("s")},
             processorOf(costs[0]), processorOf(costs[1]), bounds::oneBitFilter);
    return std::memcmp(ours.data(), plain.data(), ours.size() * sizeof(float)) == 0;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    int pairs = 15;
    Options options;
    options.number("pairs", "Pairs of runs of each row.", pairs);
    options.read(application);
    constexpr Layout layouts[] = {
        {"1 channel, lowest bit first", 1, true, true},
        {"2 channels in blocks, lowest bit first", 2, true, true},
        {"2 channels byte by byte", 2, false, false},
        {"6 channels byte by byte", 6, false, false},
    };
    printHead();
    for (const Layout& layout : layouts) {
        if (!measure(layout, pairs)) {
            std::fprintf(stderr, "the bits differ: %s\n", layout.name);
            return 1;
        }
    }
    return 0;
}
