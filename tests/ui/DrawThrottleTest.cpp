#include "ui/DrawThrottle.h"

#include <QElapsedTimer>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

constexpr int mostASecond = 60;

/// Three intervals, however late they come: timers that run out together are
/// served in the order of their times, so that the throttle's come first.
void passThreeIntervals()
{
    bool over = false;
    QTimer::singleShot(3 * 1000 / mostASecond + 1, Qt::PreciseTimer, qApp, [&over] { over = true; });
    EXPECT_TRUE(QTest::qWaitFor([&over] { return over; }, 60000));
}

} // namespace

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
    EXPECT_TRUE(QTest::qWaitFor([&] { return shown == 1000; }, 60000));
    passThreeIntervals();
    EXPECT_EQ(drawn, 2);
}

TEST(DrawThrottle, NeverDrawsMoreThanSixtyTimesASecond)
{
    int drawn = 0;
    DrawThrottle throttle([&] { ++drawn; });
    QElapsedTimer time;
    time.start();
    while (time.elapsed() < 400 || (drawn < 2 && time.elapsed() < 60000)) {
        throttle.request();
        QCoreApplication::processEvents();
    }
    // One at the start, then one for each sixtieth of a second that has passed.
    EXPECT_LE(drawn, 1 + (time.elapsed() + 1) * mostASecond / 1000);
    EXPECT_GE(drawn, 2);
}

TEST(DrawThrottle, AChangeAfterAPauseShowsAtOnce)
{
    int drawn = 0;
    DrawThrottle throttle([&] { ++drawn; });
    throttle.request();
    passThreeIntervals();
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
    passThreeIntervals();
    EXPECT_EQ(drawn, 1);
}
