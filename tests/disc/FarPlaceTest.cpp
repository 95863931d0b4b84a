#include "disc/FarPlace.h"

#include <gtest/gtest.h>

namespace {

quint32 distance(quint32 one, quint32 other)
{
    return one > other ? one - other : other - one;
}

} // namespace

// 8 MiB hold 8 * 1024 * 1024 / 2352 = 3566.6 sectors.
TEST(FarPlace, IsBeyondEveryBufferAndNotMuchFarther)
{
    const SectorRange disc{0, 330'000};
    for (const quint32 lba : {0U, 1U, 3999U, 4000U, 100'000U, 165'000U, 329'999U}) {
        const quint32 place = farPlace(disc, {lba});
        EXPECT_GE(distance(place, lba), 3567U + 27) << lba;
        EXPECT_LE(distance(place, lba), 8000U) << "no longer way than needed from " << lba;
        EXPECT_LE(place + 27, 330'000U);
    }
}

TEST(FarPlace, KeepsAwayFromAllThatItIsGiven)
{
    const SectorRange disc{32, 200'000};
    QList<quint32> from{50'000, 52'000};
    for (int i = 0; i < 6; ++i) {
        const quint32 place = farPlace(disc, from);
        for (const quint32 one : from)
            EXPECT_GE(distance(place, one), 3594U);
        from.append(place);
    }
}

TEST(FarPlace, GoesAsFarAsAShortDiscAllows)
{
    EXPECT_EQ(farPlace({0, 2000}, {0}), 1973U) << "the last batch of 27";
    EXPECT_EQ(farPlace({0, 2000}, {1999}), 0U);
    EXPECT_EQ(farPlace({100, 2000}, {1999}), 100U) << "audio begins at 100";
    const quint32 between = farPlace({0, 2027}, {0, 2000});
    EXPECT_NEAR(between, 1000, 2000 / 96 + 1);
}

TEST(FarPlace, StaysInADiscOfOneBatch)
{
    EXPECT_EQ(farPlace({10, 37}, {10}), 10U);
    EXPECT_EQ(farPlace({10, 11}, {300}), 10U);
    EXPECT_EQ(farPlace({0, 0xFFFFFFFF}, {0}) / 0x10000000, 0U);
}

// 97 places, a thousand sectors apart.
TEST(FarPlace, IsTheNearestThatIsJustFarEnough)
{
    EXPECT_EQ(farPlace({0, 96'000 + 27}, {0}, 4000), 4000U);
    EXPECT_EQ(farPlace({0, 96'000 + 27}, {96'000}, 4000), 92'000U);
}
