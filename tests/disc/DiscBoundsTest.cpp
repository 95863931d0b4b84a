#include "disc/DiscBounds.h"

#include <gtest/gtest.h>

namespace {

TrackInfo track(quint32 startLba, quint32 endLba, bool isData = false)
{
    TrackInfo made;
    made.startLba = startLba;
    made.endLba = endLba;
    made.isData = isData;
    return made;
}

/// Data, two audio tracks, and data behind a gap.
DiscBounds mixedDisc()
{
    DiscToc disc;
    disc.tracks = {track(0, 99, true), track(100, 199), track(200, 299), track(11700, 11999, true)};
    disc.totalSectors = 12000;
    return DiscBounds(disc);
}

} // namespace

TEST(DiscBounds, WithoutATableThereAreNone)
{
    EXPECT_EQ(DiscBounds().boundedBatch(0xFFFFFFF0, 27), 27U);
    EXPECT_TRUE(DiscBounds().audioArea().isEmpty());
}

TEST(DiscBounds, ABatchEndsWithTheAudioInFrontOfData)
{
    const DiscBounds bounds = mixedDisc();
    EXPECT_EQ(bounds.boundedBatch(273, 27), 27U);
    EXPECT_EQ(bounds.boundedBatch(274, 27), 26U);
    EXPECT_EQ(bounds.boundedBatch(299, 27), 1U);
    EXPECT_EQ(bounds.boundedBatch(300, 27), 27U) << "the gap has no bound of its own";
}

TEST(DiscBounds, ABatchGoesOnIntoTheNextAudioTrack)
{
    EXPECT_EQ(mixedDisc().boundedBatch(190, 27), 27U);
}

TEST(DiscBounds, NoBatchPassesTheLeadOut)
{
    const DiscBounds bounds = mixedDisc();
    EXPECT_EQ(bounds.boundedBatch(11973, 27), 27U);
    EXPECT_EQ(bounds.boundedBatch(11999, 27), 1U);
    EXPECT_EQ(bounds.boundedBatch(12000, 27), 0U);
}

TEST(DiscBounds, TheAudioAreaIsFromTheFirstAudioSectorToTheLast)
{
    EXPECT_EQ(mixedDisc().audioArea().first, 100U);
    EXPECT_EQ(mixedDisc().audioArea().end, 300U);
}
