#include "codecs/dsd/DsdFirFilter.h"

#include "codecs/KaiserWindow.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

namespace {

constexpr std::size_t taps = DsdFirFilter::taps;
constexpr std::size_t bitsPerByte = 8;
// Whole bytes of the past that the first value of a call still meets.
constexpr std::size_t pastBytes = taps / bitsPerByte - 1;
// Values whose sums run side by side, and the bytes taken from the input at once.
constexpr std::size_t lanes = 16;
constexpr std::size_t pieceBytes = 16 * lanes;

std::array<float, taps> designLowPass()
{
    constexpr double cutoff = 0.39269908169872414;
    constexpr double centre = 63.5;
    constexpr double beta = 8.0;

    std::array<float, taps> designed{};
    double sum = 0.0;
    for (std::size_t i = 0; i < taps; ++i) {
        const double n = static_cast<double>(i) - centre;
        const double lowPass = std::sin(n * cutoff) / (n * std::numbers::pi);
        const double value = lowPass * kaiserWindow(n / centre, beta);
        designed[i] = static_cast<float>(value);
        sum += value;
    }
    const double scale = 1.0 / sum;
    for (float& coefficient : designed)
        coefficient = static_cast<float>(double{coefficient} * scale);
    return designed;
}

// Without a branch, which one-bit audio lets go wrong every other time.
double bitValue(quint8 byte, std::size_t shift)
{
    constexpr quint64 one = std::bit_cast<quint64>(1.0);
    const quint64 clear = (quint64{byte} >> shift & 1) ^ 1;
    return std::bit_cast<double>(one | clear << 63);
}

/// The bits of a piece and of the bytes before it, one row for each place in a
/// byte, so that what neighbouring values meet at the same tap lies side by side.
class BitRows {
public:
    void loadPast(const DsdFirFilter& filter)
    {
        for (std::size_t back = 1; back <= pastBytes * bitsPerByte; ++back) {
            const std::size_t bit = pastBytes * bitsPerByte - back;
            const double value = double{filter.ring[(filter.position + taps - back) % taps]};
            rows[bit % bitsPerByte][bit / bitsPerByte] = value;
        }
    }

    void load(const quint8* in, std::size_t count, std::size_t step, bool lsbFirst)
    {
        // Side by side, so that the bits of many bytes are spread at once.
        std::array<quint8, pieceBytes> bytes;
        for (std::size_t i = 0; i < count; ++i)
            bytes[i] = in[i * step];
        for (std::size_t bit = 0; bit < bitsPerByte; ++bit) {
            const std::size_t shift = lsbFirst ? bit : bitsPerByte - 1 - bit;
            double* row = rows[bit].data() + pastBytes;
            for (std::size_t i = 0; i < count; ++i)
                row[i] = bitValue(bytes[i], shift);
        }
    }

    /// Moves the end of a piece to where the past of the next one is looked for.
    void keepPast(std::size_t count)
    {
        for (auto& row : rows)
            std::copy_n(row.begin() + static_cast<std::ptrdiff_t>(count), pastBytes, row.begin());
    }

    /// The sums after the bytes first, first + 1, ... of the piece.
    void sum(const std::array<double, taps>& coefficients, std::size_t first, double (&sums)[lanes]) const
    {
        double running[lanes] = {};
        for (std::size_t tap = 0; tap < taps; ++tap) {
            const double coefficient = coefficients[tap];
            const double* bits =
                rows[bitsPerByte - 1 - tap % bitsPerByte].data() + pastBytes + first - tap / bitsPerByte;
            for (std::size_t lane = 0; lane < lanes; ++lane)
                running[lane] += coefficient * bits[lane];
        }
        std::copy_n(running, lanes, sums);
    }

private:
    // The last, unfinished group of lanes reads on over values that no one uses.
    std::array<std::array<double, pastBytes + pieceBytes + lanes>, bitsPerByte> rows{};
};

void advanceRing(DsdFirFilter& filter, const quint8* in, std::size_t count, std::size_t step, bool lsbFirst)
{
    for (std::size_t i = 0; i < count; ++i, in += step) {
        for (std::size_t bit = 0; bit < bitsPerByte; ++bit) {
            const std::size_t shift = lsbFirst ? bit : bitsPerByte - 1 - bit;
            filter.ring[filter.position] = static_cast<float>(bitValue(*in, shift));
            filter.position = (filter.position + 1) % taps;
        }
    }
}

} // namespace

DsdFirFilter::DsdFirFilter()
{
    static const std::array<float, taps> designed = designLowPass();
    coefficients = designed;
}

void decodeDsdBytes(DsdFirFilter& filter, const quint8* in, std::size_t count, bool lsbFirst, float* out,
                    std::size_t inStep, std::size_t outStep)
{
    BitRows rows;
    rows.loadPast(filter);
    std::array<double, taps> coefficients;
    std::copy(filter.coefficients.begin(), filter.coefficients.end(), coefficients.begin());

    while (count > 0) {
        const std::size_t piece = std::min(count, pieceBytes);
        rows.load(in, piece, inStep, lsbFirst);
        for (std::size_t first = 0; first < piece; first += lanes) {
            double sums[lanes];
            rows.sum(coefficients, first, sums);
            const std::size_t wanted = std::min(lanes, piece - first);
            for (std::size_t lane = 0; lane < wanted; ++lane, out += outStep)
                *out = static_cast<float>(sums[lane]);
        }
        rows.keepPast(piece);
        // Of a long piece only the bits that stay are written, where all would have ended.
        const std::size_t kept = std::min(piece, taps / bitsPerByte);
        filter.position = static_cast<quint32>((filter.position + (piece - kept) * bitsPerByte) % taps);
        advanceRing(filter, in + (piece - kept) * inStep, kept, inStep, lsbFirst);
        in += piece * inStep;
        count -= piece;
    }
}
