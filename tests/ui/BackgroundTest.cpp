#include "ui/Background.h"

#include <QCoreApplication>
#include <QTest>
#include <QThread>
#include <QThreadPool>

#include <algorithm>
#include <memory>
#include <semaphore>

#include <gtest/gtest.h>

namespace {

class Background : public ::testing::Test {
protected:
    // On a pool of one thread, work waits for the work before it.
    void SetUp() override { QThreadPool::globalInstance()->setMaxThreadCount(std::max(2, poolSize)); }
    void TearDown() override { QThreadPool::globalInstance()->setMaxThreadCount(poolSize); }

    const int poolSize = QThreadPool::globalInstance()->maxThreadCount();
};

} // namespace

TEST_F(Background, WorksOnThePoolAndAppliesOnTheThreadOfTheContext)
{
    QObject context;
    const QThread* own = QThread::currentThread();
    const QThread* worked = nullptr;
    const QThread* applied = nullptr;
    int result = 0;
    runInBackground(
        &context,
        [&worked] {
            worked = QThread::currentThread();
            return 42;
        },
        [&](int found) {
            applied = QThread::currentThread();
            result = found;
        });
    EXPECT_EQ(result, 0) << "nothing is applied before the event loop has its turn";
    ASSERT_TRUE(QTest::qWaitFor([&result] { return result != 0; }, 60000));
    EXPECT_EQ(result, 42);
    EXPECT_NE(worked, own);
    EXPECT_EQ(applied, own);
}

TEST_F(Background, NothingIsLeftBelowTheContext)
{
    QObject context;
    bool applied = false;
    runInBackground(
        &context, [] { return 1; }, [&applied](int) { applied = true; });
    EXPECT_EQ(context.children().size(), 1);
    ASSERT_TRUE(QTest::qWaitFor([&applied] { return applied; }, 60000));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(context.children().isEmpty());
}

TEST_F(Background, TwoAtOnceAreAppliedInTheOrderOfTheirEnds)
{
    QObject context;
    std::binary_semaphore gate{0};
    QList<int> applied;
    const auto note = [&applied](int number) { applied << number; };
    runInBackground(
        &context,
        [&gate] {
            gate.acquire();
            return 1;
        },
        note);
    runInBackground(
        &context, [] { return 2; }, note);
    EXPECT_TRUE(QTest::qWaitFor([&applied] { return !applied.isEmpty(); }, 60000));
    gate.release();
    ASSERT_TRUE(QTest::qWaitFor([&applied] { return applied.size() == 2; }, 60000));
    EXPECT_EQ(applied, (QList<int>{2, 1}));
}

TEST_F(Background, NothingIsAppliedOnceTheContextIsGone)
{
    auto context = std::make_unique<QObject>();
    std::binary_semaphore gate{0};
    bool ended = false;
    bool applied = false;
    runInBackground(
        context.get(),
        [&] {
            gate.acquire();
            ended = true;
            return 1;
        },
        [&applied](int) { applied = true; });
    context.reset();
    gate.release();
    waitForBackground();
    QCoreApplication::processEvents();
    EXPECT_TRUE(ended) << "the work goes on to its end";
    EXPECT_FALSE(applied);
}

TEST_F(Background, WhatTheWorkHoldsIsGoneWhenNothingIsUnderWay)
{
    QObject context;
    std::binary_semaphore gate{0};
    bool gone = false;
    const auto leave = [&gone](int* number) {
        delete number;
        gone = true;
    };
    runInBackground(
        &context,
        [&gate, held = std::shared_ptr<int>(new int(1), leave)] {
            gate.acquire();
            return *held;
        },
        [](int) {});
    EXPECT_FALSE(waitForBackground(0)) << "the work goes on";
    gate.release();
    EXPECT_TRUE(waitForBackground());
    EXPECT_TRUE(gone);
}
