#include "ui/DrawThrottle.h"

#include <QElapsedTimer>
#include <QTest>

#include <gtest/gtest.h>

TEST(DrawThrottle, DrawsTheFirstChangeAtOnce)
{
    int drawn = 0;
    DrawThrottle throttle([&] { ++drawn; });
    throttle.request();
    EXPECT_EQ(drawn, 1);
}

TEST(DrawThrottle, DrawsABurstOnceMoreWithItsLastState)
{
    int state = 0;
    int shown = -1;
    int drawn = 0;
    DrawThrottle throttle([&] {
        shown = state;
        ++drawn;
    });
    for (state = 1; state <= 1000; ++state)
        throttle.request();
    state = 1000;
    EXPECT_EQ(shown, 1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return shown == 1000; }, 1000));
    QTest::qWait(3 * DrawThrottle::intervalMilliseconds);
    EXPECT_EQ(drawn, 2);
}

TEST(DrawThrottle, NeverDrawsMoreThanSixtyTimesASecond)
{
    int drawn = 0;
    DrawThrottle throttle([&] { ++drawn; });
    QElapsedTimer time;
    time.start();
    while (time.elapsed() < 400) {
        throttle.request();
        QCoreApplication::processEvents();
    }
    // One at the start, then one for each whole interval.
    EXPECT_LE(drawn, 1 + time.elapsed() / (DrawThrottle::intervalMilliseconds - 1));
    EXPECT_GE(drawn, 2);
}

TEST(DrawThrottle, AChangeAfterAPauseShowsAtOnce)
{
    int drawn = 0;
    DrawThrottle throttle([&] { ++drawn; });
    throttle.request();
    QTest::qWait(3 * DrawThrottle::intervalMilliseconds);
    EXPECT_EQ(drawn, 1);
    throttle.request();
    EXPECT_EQ(drawn, 2);
}

TEST(DrawThrottle, FlushDrawsOnlyWhatIsOutstanding)
{
    int drawn = 0;
    DrawThrottle throttle([&] { ++drawn; });
    throttle.flush();
    EXPECT_EQ(drawn, 0);
    throttle.request();
    throttle.request();
    throttle.flush();
    throttle.flush();
    EXPECT_EQ(drawn, 2);
}

TEST(DrawThrottle, CancelForgetsWhatIsOutstanding)
{
    int drawn = 0;
    DrawThrottle throttle([&] { ++drawn; });
    throttle.request();
    throttle.request();
    throttle.cancel();
    QTest::qWait(3 * DrawThrottle::intervalMilliseconds);
    EXPECT_EQ(drawn, 1);
}
