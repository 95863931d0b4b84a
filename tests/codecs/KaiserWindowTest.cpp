#include "codecs/KaiserWindow.h"

#include <gtest/gtest.h>

#include <cmath>

TEST(KaiserWindow, TheSeriesOfTheBesselFunction)
{
    EXPECT_EQ(besselI0(0), 1.0);
    EXPECT_NEAR(besselI0(8.0), 427.5641, 0.0001);
    for (const double x : {0.5, 1.0, 2.5, 5.0, 8.0})
        EXPECT_NEAR(besselI0(x) / std::cyl_bessel_i(0.0, x), 1.0, 1e-11) << x;
}

TEST(KaiserWindow, IsOneInTheMiddleAndOneByTheBesselFunctionAtTheEnds)
{
    EXPECT_EQ(kaiserWindow(0.0, 8.6), 1.0);
    EXPECT_EQ(kaiserWindow(1.0, 8.6), 1.0 / besselI0(8.6));
    EXPECT_EQ(kaiserWindow(-1.0, 8.6), kaiserWindow(1.0, 8.6));
    // A rounding past the ends is still at the ends.
    EXPECT_EQ(kaiserWindow(1.0000001, 8.6), kaiserWindow(1.0, 8.6));
    EXPECT_NEAR(kaiserWindow(0.6, 5.0), std::cyl_bessel_i(0.0, 4.0) / std::cyl_bessel_i(0.0, 5.0), 1e-11);
}
