#include "ui/RipCounters.h"

#include "disc/DiscModel.h"

#include <gtest/gtest.h>

#include <QList>
#include <QString>

TEST(RipCounters, ASectorCountsOnceAndItsErrorBeforeItsDoubt)
{
    RipCounters counters;
    const auto add = [&counters](bool clean, bool bad, bool mismatch) {
        SectorResult sector;
        sector.clean = clean;
        sector.bad = bad;
        sector.mismatch = mismatch;
        counters.add(sector);
        return QList<int>{counters.done, counters.errors, counters.suspects};
    };
    EXPECT_EQ(add(true, false, false), (QList<int>{1, 0, 0}));
    EXPECT_EQ(add(false, false, false), (QList<int>{2, 0, 1}));
    EXPECT_EQ(add(false, true, false), (QList<int>{3, 1, 1}));
    EXPECT_EQ(add(true, false, true), (QList<int>{4, 2, 1}));
    EXPECT_EQ(add(false, true, true), (QList<int>{5, 3, 1}));
}

TEST(RipCounters, ReadQualityCountsSuspectsLikeErrors)
{
    EXPECT_EQ((RipCounters{0, 0, 0}).readQualityText(), QStringLiteral("100.00"));
    EXPECT_EQ((RipCounters{200, 1, 2}).readQualityText(), QStringLiteral("98.50"));
    EXPECT_EQ((RipCounters{300000, 0, 1}).readQualityText(), QStringLiteral("100.00"));
    EXPECT_EQ((RipCounters{7, 3, 4}).readQualityText(), QStringLiteral("0.00"));
    EXPECT_EQ((RipCounters{1, 2, 2}).readQuality(), 0.0);
}
