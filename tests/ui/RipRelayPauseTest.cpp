#include "ui/RipRelay.h"

#include "ui/Emitter.h"

#include <QCoreApplication>
#include <QEvent>
#include <QTest>
#include <QThread>

#include <gtest/gtest.h>

namespace {

/// How often its objects got an event of a kind.
class EventCount : public QObject {
public:
    explicit EventCount(QEvent::Type counted) : type(counted) {}

    int count = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        count += event->type() == type ? 1 : 0;
        return false;
    }

private:
    QEvent::Type type;
};

} // namespace

// Each of them comes after the one before has been delivered.
TEST(RipRelayPause, AThreadThatKeepsUpIsNotWokenForEachSector)
{
    constexpr qsizetype sectors = 2000;
    EventCount wakes(QEvent::MetaCall);
    Emitter emitter;
    RipRelay relay;
    relay.installEventFilter(&wakes);
    relay.attach(&emitter.worker);
    qsizetype received = 0;
    QObject::connect(&relay, &RipRelay::sectorsDone,
                     [&](const QList<SectorResult>& some) { received += some.size(); });
    emitter.start([](RipWorker& worker) {
        for (quint32 lba = 0; lba < sectors; ++lba) {
            Q_EMIT worker.sectorDone(sectorAt(lba));
            QThread::usleep(100);
        }
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return received == sectors; }, 60000));
    EXPECT_GE(wakes.count, 1);
    EXPECT_LT(wakes.count, sectors / 10);
}

TEST(RipRelayPause, AWorkerThatPausesWakesItAnew)
{
    Emitter emitter;
    RipRelay relay;
    relay.attach(&emitter.worker);
    std::atomic<int> received = 0;
    QObject::connect(&relay, &RipRelay::logLine, [&] { ++received; });
    emitter.start([&](RipWorker& worker) {
        for (int line = 0; line < 10; ++line) {
            Q_EMIT worker.logLine(QStringLiteral("line"));
            for (int wait = 0; received == line && wait < 5000; ++wait)
                QThread::msleep(1);
            QThread::msleep(3 * RipRelay::pauseMilliseconds);
        }
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return emitter.done.load(); }, 60000));
    EXPECT_EQ(received, 10);
}

TEST(RipRelayPause, RestsWhileAWorkerHasNothingToSay)
{
    Emitter emitter;
    RipRelay relay;
    relay.attach(&emitter.worker);
    bool received = false;
    QObject::connect(&relay, &RipRelay::logLine, [&] { received = true; });
    emitter.start([](RipWorker& worker) { Q_EMIT worker.logLine(QStringLiteral("line")); });
    EXPECT_TRUE(QTest::qWaitFor([&] { return received; }, 60000));
    EventCount ticks(QEvent::Timer);
    qApp->installEventFilter(&ticks);
    const auto rests = [&ticks] {
        ticks.count = 0;
        QTest::qWait(20 * RipRelay::pauseMilliseconds);
        return ticks.count == 0;
    };
    EXPECT_TRUE(QTest::qWaitFor(rests, 60000));
}
