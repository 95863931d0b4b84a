#include "disc/KnownHoles.h"

#include <gtest/gtest.h>

namespace {

void fail(KnownHoles& holes, quint32 lba, int times)
{
    for (int i = 0; i < times; ++i)
        holes.failed(lba, 1);
}

} // namespace

TEST(KnownHoles, NothingIsKnownAtFirst)
{
    const KnownHoles holes;
    EXPECT_FALSE(holes.isHole(5));
    EXPECT_FALSE(holes.isExhausted(5));
    EXPECT_FALSE(holes.anyTrouble(0, 1000));
    EXPECT_EQ(holes.boundedBatch(5, 27), 27U);
}

TEST(KnownHoles, ASectorIsExhaustedAfterAWholeLadderOfItsOwn)
{
    KnownHoles holes;
    fail(holes, 5, 34);
    EXPECT_FALSE(holes.isExhausted(5));
    fail(holes, 5, 1);
    EXPECT_TRUE(holes.isExhausted(5));
    EXPECT_FALSE(holes.isExhausted(6));
    EXPECT_FALSE(holes.isHole(5)) << "that is for the last attempt to say";
}

TEST(KnownHoles, AFailedBatchTellsOfNoSectorInIt)
{
    KnownHoles holes;
    for (int i = 0; i < 100; ++i)
        holes.failed(5, 27);
    EXPECT_FALSE(holes.isExhausted(5));
}

TEST(KnownHoles, ADeliveryClearsWhatWasCounted)
{
    KnownHoles holes;
    fail(holes, 5, 34);
    holes.delivered(0, 27);
    fail(holes, 5, 34);
    EXPECT_FALSE(holes.isExhausted(5));
}

TEST(KnownHoles, TheFirstBadSectorOfABatchGivenUpIsAskedFifteenTimesMore)
{
    KnownHoles holes;
    holes.batchGivenUp(54, 27);
    for (quint32 lba = 54; lba < 60; ++lba)
        holes.delivered(lba, 1);
    fail(holes, 60, 14);
    EXPECT_FALSE(holes.isExhausted(60));
    fail(holes, 60, 1);
    EXPECT_TRUE(holes.isExhausted(60));
    fail(holes, 61, 34);
    EXPECT_FALSE(holes.isExhausted(61)) << "the batch never came as far as this one";
    fail(holes, 61, 1);
    EXPECT_TRUE(holes.isExhausted(61));
}

TEST(KnownHoles, AHoleFoundOutOfTurnAnswersForTheBatchTowardsWhatLiesBehindIt)
{
    KnownHoles holes;
    holes.batchGivenUp(54, 27);
    fail(holes, 60, 35);
    holes.add(60);
    for (quint32 lba = 54; lba < 60; ++lba)
        holes.delivered(lba, 1);
    fail(holes, 61, 34);
    EXPECT_FALSE(holes.isExhausted(61));
    fail(holes, 61, 1);
    EXPECT_TRUE(holes.isExhausted(61));
}

TEST(KnownHoles, AHoleFoundOutOfTurnDoesNotAnswerForTheBatchTowardsWhatLiesInFront)
{
    KnownHoles holes;
    holes.batchGivenUp(54, 27);
    for (const quint32 lba : {70U, 60U, 65U}) {
        fail(holes, lba, 35);
        holes.add(lba);
    }
    fail(holes, 54, 14);
    EXPECT_FALSE(holes.isExhausted(54));
    fail(holes, 54, 1);
    EXPECT_TRUE(holes.isExhausted(54));
}

TEST(KnownHoles, ASectorThatWasDeliveredAsNoiseFailedNoBatch)
{
    KnownHoles holes;
    holes.batchGivenUp(54, 27);
    holes.delivered(54, 1);
    holes.add(54);
    holes.add(55);
    fail(holes, 56, 14);
    EXPECT_FALSE(holes.isExhausted(56));
    fail(holes, 56, 1);
    EXPECT_TRUE(holes.isExhausted(56));
}

TEST(KnownHoles, InAStretchThatFailedSectorsAreAskedForAlone)
{
    KnownHoles holes;
    holes.batchGivenUp(54, 27);
    EXPECT_EQ(holes.boundedBatch(30, 27), 24U) << "up to its first sector";
    EXPECT_EQ(holes.boundedBatch(27, 27), 27U);
    EXPECT_EQ(holes.boundedBatch(54, 27), 1U);
    EXPECT_EQ(holes.boundedBatch(80, 27), 1U);
    EXPECT_EQ(holes.boundedBatch(81, 27), 27U);
    EXPECT_EQ(holes.boundedBatch(54, 0), 0U);
}

TEST(KnownHoles, AStretchEndsWhereItsSectorsAreSettled)
{
    KnownHoles holes;
    holes.batchGivenUp(54, 27);
    for (quint32 lba = 54; lba < 60; ++lba)
        holes.delivered(lba, 1);
    EXPECT_EQ(holes.boundedBatch(54, 27), 6U) << "in front of what is left of it";
    holes.add(61);
    holes.add(60);
    EXPECT_EQ(holes.boundedBatch(62, 27), 1U);
    for (quint32 lba = 62; lba < 81; ++lba)
        holes.delivered(lba, 1);
    EXPECT_EQ(holes.boundedBatch(62, 27), 27U);
    EXPECT_TRUE(holes.anyTrouble(50, 27));
    EXPECT_FALSE(holes.anyTrouble(62, 27));
}

TEST(KnownHoles, ABatchEndsInFrontOfAHole)
{
    KnownHoles holes;
    holes.add(60);
    holes.add(70);
    EXPECT_EQ(holes.boundedBatch(54, 27), 6U);
    EXPECT_EQ(holes.boundedBatch(60, 27), 1U);
    EXPECT_EQ(holes.boundedBatch(61, 27), 9U);
    EXPECT_EQ(holes.boundedBatch(71, 27), 27U);
    EXPECT_TRUE(holes.anyHole(34, 27));
    EXPECT_FALSE(holes.anyHole(33, 27));
    EXPECT_FALSE(holes.anyHole(71, 27));
}
