// Clicks and keys at random over the whole window.

#include "endurance/Repetitions.h"
#include "endurance/Walk.h"

TEST(Walks, LeaveTheWindowAsItHasToBe)
{
    constexpr int steps = 200;
    const Repetitions walks("WALK", 5);
    const WalkStage stage;
    int windows = 0;
    int rips = 0;
    QElapsedTimer time;
    time.start();
    const QByteArray verdict = walks.each([&](quint32 seed) {
        Walk walk(stage, seed);
        const QStringList wrong = walk.take(steps);
        EXPECT_TRUE(wrong.isEmpty()) << "walk of seed " << seed << ":\n" << wrong.join(u'\n').toStdString();
        windows += walk.windows();
        rips += walk.rips();
    });
    std::printf("%d walks of %d steps, seeds %u to %u: %s. %d windows, %d rips, %.2f s for each walk.\n",
                walks.count(), steps, walks.first(), walks.last(), verdict.constData(), windows, rips,
                static_cast<double>(time.elapsed()) / 1000 / std::max(1, walks.count()));
}
