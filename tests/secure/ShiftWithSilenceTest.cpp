#include "secure/ParanoiaReader.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

QList<qint16> shifted(int offset)
{
    QList<qint16> samples{1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    shiftWithSilence(samples, offset);
    return samples;
}

} // namespace

TEST(ShiftWithSilence, PositiveOffsetDropsInFrontAndPadsBehind)
{
    EXPECT_EQ(shifted(2), (QList<qint16>{3, 4, 5, 6, 7, 8, 9, 10, 0, 0}));
}

TEST(ShiftWithSilence, NegativeOffsetPadsInFrontAndDropsBehind)
{
    EXPECT_EQ(shifted(-2), (QList<qint16>{0, 0, 1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(ShiftWithSilence, OddOffsetSwapsTheChannels)
{
    EXPECT_EQ(shifted(1), (QList<qint16>{2, 3, 4, 5, 6, 7, 8, 9, 10, 0}));
}

TEST(ShiftWithSilence, OffsetAsLongAsTheTrackOrLongerIsIgnored)
{
    const QList<qint16> unchanged{1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    for (const int offset :
         {0, 10, -10, 11, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()})
        EXPECT_EQ(shifted(offset), unchanged) << offset;
    EXPECT_EQ(shifted(9), (QList<qint16>{10, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(ShiftWithSilence, WideValuesMoveAlike)
{
    QList<int> samples{1 * 65536, -2 * 65536, 3 * 65536};
    shiftWithSilence(samples, 1);
    EXPECT_EQ(samples, (QList<int>{-2 * 65536, 3 * 65536, 0}));
}
