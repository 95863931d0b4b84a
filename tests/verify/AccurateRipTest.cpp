#include "verify/AccurateRip.h"

#include <QRandomGenerator>

#include <gtest/gtest.h>

#include <vector>

namespace {

DiscToc discOf(const QList<std::pair<quint32, bool>>& startsAndData, quint32 leadOut)
{
    DiscToc disc;
    for (const auto& [start, isData] : startsAndData) {
        TrackInfo track;
        track.number = static_cast<int>(disc.tracks.size()) + 1;
        track.startLba = start;
        track.isData = isData;
        disc.tracks.append(track);
    }
    disc.totalSectors = leadOut;
    return disc;
}

QList<int> noise(int values, quint32 seed)
{
    QRandomGenerator random(seed);
    QList<int> samples;
    for (int i = 0; i < values; ++i)
        samples.append(random.bounded(-32768, 32768) * 65536);
    return samples;
}

struct Checksums {
    quint32 v1 = 0;
    quint32 v2 = 0;
    bool operator==(const Checksums&) const = default;
};

Checksums checksums(const QList<int>& samples, int number, int last)
{
    Checksums sums{1, 1};
    accurateRipCrc(samples, number, last, sums.v1, sums.v2);
    return sums;
}

/// Frame by frame, with every product written out.
Checksums slowChecksums(const QList<int>& samples, int number, int last)
{
    const long long frames = samples.size() / 2;
    const long long from = number == 1 ? 2940 : 0;
    long long to = frames;
    if (number == last)
        to = frames > 2940 ? frames - 2940 : 0;
    std::vector<unsigned long long> products;
    for (long long p = 1; p <= frames; ++p) {
        if (p < from || p > to)
            continue;
        const auto left = static_cast<unsigned short>(samples[2 * (p - 1)] / 65536);
        const auto right = static_cast<unsigned short>(samples[2 * (p - 1) + 1] / 65536);
        products.push_back((right * 65536ULL + left) * static_cast<unsigned long long>(p));
    }
    unsigned long long v1 = 0;
    unsigned long long v2 = 0;
    for (const unsigned long long product : products) {
        v1 = (v1 + product % 4294967296ULL) % 4294967296ULL;
        v2 = (v2 + product % 4294967296ULL + product / 4294967296ULL) % 4294967296ULL;
    }
    return {static_cast<quint32>(v1), static_cast<quint32>(v2)};
}

} // namespace

TEST(AccurateRipIds, ADiscWithoutAudioIsAllZeros)
{
    const QString zeros = QStringLiteral("dBAR-000-00000000-00000000-00000000");
    EXPECT_EQ(accurateRipDiscId(DiscToc()), zeros);
    EXPECT_EQ(accurateRipDiscId(discOf({{0, true}, {5000, true}}, 9000)), zeros);
}

TEST(AccurateRipIds, TwoAudioTracksHaveTheWorkedText)
{
    EXPECT_EQ(accurateRipDiscId(discOf({{0, false}, {10000, false}}, 20000)),
              QStringLiteral("dBAR-002-00007530-00013881-0b010a02"));
}

// Tracks at 12 and 135 seconds: digits 3 and 9. Length 268 - 12 = 256.
TEST(AccurateRipIds, TheLengthCountsFromTheFirstTrack)
{
    const AccurateRipIds ids = computeAccurateRipIds(discOf({{750, false}, {10000, false}}, 20000));
    EXPECT_EQ(ids.cddbId, 0x0c010002u);
}

// Ten seconds of which each has the digit sum 28, from 1999 on: 280 in all, and
// 280 modulo 255 is 25. Length 4500 - 1999 = 2501.
TEST(AccurateRipIds, TheDigitSumIsTakenModulo255)
{
    QList<std::pair<quint32, bool>> tracks;
    for (const quint32 second : {1999u, 2899u, 2989u, 2998u, 3799u, 3889u, 3898u, 3979u, 3988u, 3997u})
        tracks.append({second * 75 - 150, false});
    EXPECT_EQ(computeAccurateRipIds(discOf(tracks, 4500 * 75 - 150)).cddbId, 0x19u << 24 | 2501u << 8 | 10u);
}

TEST(AccurateRipIds, AFirstSectorOfZeroCountsAsOneInTheProductAlone)
{
    const AccurateRipIds ids = computeAccurateRipIds(discOf({{0, false}}, 0));
    EXPECT_EQ(ids.discId1, 0u);
    EXPECT_EQ(ids.discId2, 1u);
}

// Audio at 0, 1000 and 3000, data at 20000, lead-out 30000.
TEST(AccurateRipIds, DataTracksCountInTheFreedbIdAlone)
{
    const AccurateRipIds ids =
        computeAccurateRipIds(discOf({{0, false}, {1000, false}, {3000, false}, {20000, true}}, 30000));
    EXPECT_EQ(ids.audioTracks, 3);
    EXPECT_EQ(ids.discId1, 0u + 1000 + 3000 + 30000);
    EXPECT_EQ(ids.discId2, 1u + 1000 * 2 + 3000 * 3 + 30000 * 4);
    // Seconds 2, 15, 42 and 268: digits 2, 6, 6 and 16. Length 402 - 2.
    EXPECT_EQ(ids.cddbId, 30u << 24 | 400u << 8 | 4u);
}

TEST(AccurateRipIds, PlacesAreCountedOverAudioTracksNotByNumber)
{
    const AccurateRipIds ids = computeAccurateRipIds(discOf({{0, true}, {1000, false}}, 5000));
    EXPECT_EQ(ids.audioTracks, 1);
    EXPECT_EQ(ids.discId2, 1000u + 5000 * 2);
}

TEST(AccurateRipIds, SumsWrapAt32Bits)
{
    const AccurateRipIds ids = computeAccurateRipIds(discOf({{0xFFFFFFF0, false}}, 0x20));
    EXPECT_EQ(ids.discId1, 0x10u);
    EXPECT_EQ(ids.discId2, 0x30u);
}

TEST(AccurateRipCrc, AgreesWithASlowReferenceAtRandomLengthsAndPlaces)
{
    QRandomGenerator random(7);
    for (int round = 0; round < 60; ++round) {
        const QList<int> samples = noise(random.bounded(0, 30000), random.generate());
        const int last = random.bounded(1, 5);
        const int number = random.bounded(1, last + 1);
        EXPECT_EQ(checksums(samples, number, last), slowChecksums(samples, number, last))
            << samples.size() << " values, track " << number << " of " << last;
    }
}

// Every length around the widths of vector code, and bits below the upper half of
// a value, which count for nothing.
TEST(AccurateRipCrc, AgreesAtEveryShortLength)
{
    const QList<int> samples = noise(2 * 80, 5);
    QList<int> dirty = samples;
    for (int& value : dirty)
        value |= 0x5A5A;
    for (qsizetype values = 0; values <= samples.size(); ++values) {
        const Checksums slow = slowChecksums(samples.first(values), 2, 3);
        EXPECT_EQ(checksums(samples.first(values), 2, 3), slow) << values << " values";
        EXPECT_EQ(checksums(dirty.first(values), 2, 3), slow) << values << " values with low bits";
    }
}

// A track of seven minutes: positions beyond 24 bits, where products have high halves.
TEST(AccurateRipCrc, AgreesOnALongTrack)
{
    const QList<int> samples = noise(2 * 7 * 60 * 44'100, 8);
    EXPECT_EQ(checksums(samples, 2, 3), slowChecksums(samples, 2, 3));
}

// Left 1 and right 0 in every frame: frame values of 1, so position p adds p.
TEST(AccurateRipCrc, AWorkedConstant)
{
    QList<int> samples;
    for (int frame = 0; frame < 1000; ++frame)
        samples << 65536 << 0;
    const quint32 sum = 1000 * 1001 / 2;
    EXPECT_EQ(checksums(samples, 2, 3), (Checksums{sum, sum})) << "no product has a high half";
}

// Right -1 (0xFFFF) and left 0: 0xFFFF0000 times 3 is 0x2_FFFD0000.
TEST(AccurateRipCrc, TheHighHalfCountsInTheSecondVersion)
{
    EXPECT_EQ(checksums({0, 0, 0, 0, 0, -65536}, 2, 3), (Checksums{0xFFFD0000, 0xFFFD0002}));
}

TEST(AccurateRipCrc, ALastTrackOf2940FramesOrFewerIsZero)
{
    EXPECT_EQ(checksums(noise(2 * 2940, 1), 5, 5), (Checksums{0, 0}));
    QList<int> longer = noise(2 * 2941, 1);
    const quint32 frame = static_cast<quint32>(longer[1]) | static_cast<quint32>(longer[0]) >> 16;
    EXPECT_EQ(checksums(longer, 5, 5), (Checksums{frame, frame})) << "position 1 alone";
}

TEST(AccurateRipCrc, AFirstTrackBelow2940FramesIsZero)
{
    EXPECT_EQ(checksums(noise(2 * 2939, 1), 1, 9), (Checksums{0, 0}));
    EXPECT_NE(checksums(noise(2 * 2940, 1), 1, 9), (Checksums{0, 0}));
}

TEST(AccurateRipCrc, ADiscOfOneTrackIsTrimmedAtBothEnds)
{
    QList<int> samples(2 * 6000, 0);
    samples[2 * (2939 - 1)] = 65536;            // position 2939, before the first counted
    samples[2 * (6000 - 2940 + 1 - 1)] = 65536; // behind the last counted
    EXPECT_EQ(checksums(samples, 1, 1), (Checksums{0, 0}));
    samples[2 * (2940 - 1)] = 65536;
    EXPECT_EQ(checksums(samples, 1, 1), (Checksums{2940, 2940}));
}

TEST(AccurateRipCrc, NothingOddOrSilentCounts)
{
    EXPECT_EQ(checksums({}, 1, 1), (Checksums{0, 0}));
    EXPECT_EQ(checksums({65536}, 2, 3), (Checksums{0, 0}));
    EXPECT_EQ(checksums({65536, 0, 65536}, 2, 3), (Checksums{1, 1}));
    EXPECT_EQ(checksums(QList<int>(20000, 0), 2, 3), (Checksums{0, 0}));
}
