#include "ui/RipRelay.h"

#include "ui/Emitter.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <atomic>

#include <gtest/gtest.h>

namespace {

RipResult resultOf(int track)
{
    RipResult result;
    result.trackNumber = track;
    return result;
}

} // namespace

TEST(RipRelay, DeliversAllKindsInTheirOrderOnTheGuiThread)
{
    Emitter emitter;
    RipRelay relay;
    relay.attach(&emitter.worker);
    QStringList seen;
    const auto note = [&seen](const QString& text) {
        EXPECT_EQ(QThread::currentThread(), qApp->thread());
        seen << text;
    };
    QObject::connect(&relay, &RipRelay::statusText, [&](const QString& text) { note("status " + text); });
    QObject::connect(&relay, &RipRelay::trackStarted, [&](int number, int total, const QString& title) {
        note(QStringLiteral("start %1/%2 %3").arg(number).arg(total).arg(title));
    });
    QObject::connect(&relay, &RipRelay::sectorsDone, [&](const QList<SectorResult>& sectors) {
        for (const SectorResult& sector : sectors)
            note(QStringLiteral("sector %1").arg(sector.lba));
    });
    QObject::connect(&relay, &RipRelay::logLine, [&](const QString& line) { note("log " + line); });
    QObject::connect(&relay, &RipRelay::trackDone, [&](const RipResult& result) {
        note(QStringLiteral("done %1").arg(result.trackNumber));
    });
    QObject::connect(&relay, &RipRelay::finished, [&] { note("finished"); });

    emitter.start([](RipWorker& worker) {
        Q_EMIT worker.sectorDone(sectorAt(6));
        Q_EMIT worker.statusText(QStringLiteral("a"));
        Q_EMIT worker.trackStarted(1, 2, QStringLiteral("t"));
        Q_EMIT worker.sectorDone(sectorAt(7));
        Q_EMIT worker.logLine(QStringLiteral("l"));
        Q_EMIT worker.sectorDone(sectorAt(8));
        Q_EMIT worker.sectorDone(sectorAt(9));
        Q_EMIT worker.trackDone(resultOf(1));
        Q_EMIT worker.finished();
    });
    while (!emitter.done) // so that all of it waits together
        QThread::msleep(1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return seen.contains(QStringLiteral("finished")); }, 5000));
    EXPECT_EQ(seen, (QStringList{"sector 6", "status a", "start 1/2 t", "sector 7", "log l", "sector 8",
                                 "sector 9", "done 1", "finished"}));
}

TEST(RipRelay, AFullDiscAtFullSpeedArrivesWholeAndTimersGoOn)
{
    constexpr quint32 sectors = 355500;
    Emitter emitter;
    RipRelay relay;
    relay.attach(&emitter.worker);
    quint32 expected = 0;
    bool ordered = true;
    bool finished = false;
    // Slow enough, at 2 s in sum, that one long turn would show on any machine.
    constexpr quint32 sectorsPerSleep = sectors / 2000;
    qsizetype mostAtOnce = 0;
    QObject::connect(&relay, &RipRelay::sectorsDone, [&](const QList<SectorResult>& some) {
        mostAtOnce = qMax(mostAtOnce, some.size());
        for (const SectorResult& sector : some) {
            ordered = ordered && sector.lba == expected++;
            if (sector.lba % sectorsPerSleep == 0)
                QThread::msleep(1);
        }
    });
    QObject::connect(&relay, &RipRelay::finished, [&] { finished = true; });

    qint64 longestPause = 0;
    QElapsedTimer sinceTick;
    sinceTick.start();
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout,
                     [&] { longestPause = qMax(longestPause, sinceTick.restart()); });
    tick.start(1);

    emitter.start([](RipWorker& worker) {
        for (quint32 lba = 0; lba < sectors; ++lba)
            Q_EMIT worker.sectorDone(sectorAt(lba));
        Q_EMIT worker.finished();
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return finished; }, 60000));
    EXPECT_TRUE(ordered);
    EXPECT_EQ(expected, sectors);
    EXPECT_EQ(mostAtOnce, RipRelay::sectorsAtOnce) << "they came faster than they were taken";
    EXPECT_LT(longestPause, 1000); // a turn takes 10 ms; the rest is for a loaded machine
}

// The GUI thread may be at work on something else for as long as a disc takes.
TEST(RipRelay, TakesAWholeDiscWithoutATurnOfTheEventLoop)
{
    constexpr quint32 longestDisc = 100 * 60 * 75; // sectors; 99:59:74 is the last address
    Emitter emitter;
    RipRelay relay;
    relay.attach(&emitter.worker);
    qsizetype received = 0;
    QObject::connect(&relay, &RipRelay::sectorsDone,
                     [&](const QList<SectorResult>& some) { received += some.size(); });
    std::atomic<quint32> emitted = 0;
    emitter.start([&](RipWorker& worker) {
        constexpr int mostTracks = 99;
        for (int track = 1; track <= mostTracks; ++track) {
            Q_EMIT worker.statusText(QStringLiteral("1st read"));
            Q_EMIT worker.statusText(QStringLiteral("2nd read"));
            Q_EMIT worker.trackStarted(track, mostTracks, QStringLiteral("Title"));
            Q_EMIT worker.trackDone(resultOf(track));
        }
        for (; emitted < longestDisc; ++emitted)
            Q_EMIT worker.sectorDone(sectorAt(emitted));
        Q_EMIT worker.finished();
    });
    QElapsedTimer patience;
    patience.start();
    while (!emitter.done && patience.elapsed() < 60000)
        QThread::msleep(1);
    EXPECT_TRUE(emitter.done) << "held at sector " << emitted;
    EXPECT_TRUE(QTest::qWaitFor([&] { return received == longestDisc; }, 60000));
}

TEST(RipRelay, HoldsAWorkerThatRunsFarAheadAndLetsItGoOn)
{
    constexpr quint32 sectors = RipRelay::waitingLimit + 1000;
    Emitter emitter;
    RipRelay relay;
    relay.attach(&emitter.worker);
    std::atomic<quint32> emitted = 0;
    qsizetype received = 0;
    QObject::connect(&relay, &RipRelay::sectorsDone,
                     [&](const QList<SectorResult>& some) { received += some.size(); });
    emitter.start([&](RipWorker& worker) {
        for (quint32 lba = 0; lba < sectors; ++lba) {
            Q_EMIT worker.sectorDone(sectorAt(lba));
            ++emitted;
        }
    });
    // Nothing is taken while this thread sleeps.
    while (emitted < RipRelay::waitingLimit + 1)
        QThread::msleep(1);
    QThread::msleep(50);
    EXPECT_EQ(emitted.load(), RipRelay::waitingLimit + 1);
    EXPECT_FALSE(emitter.done);

    EXPECT_TRUE(QTest::qWaitFor([&] { return received == sectors; }, 60000));
}

TEST(RipRelay, HoldsAWorkerThatFloodsTheLog)
{
    Emitter emitter;
    RipRelay relay;
    relay.attach(&emitter.worker);
    std::atomic<quint32> emitted = 0;
    emitter.start([&](RipWorker& worker) {
        for (; emitted < RipRelay::waitingLimit + 1000; ++emitted)
            Q_EMIT worker.logLine(QString());
    });
    while (emitted < RipRelay::waitingLimit + 1)
        QThread::msleep(1);
    QThread::msleep(50);
    EXPECT_EQ(emitted.load(), RipRelay::waitingLimit + 1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return emitter.done.load(); }, 60000));
}

TEST(RipRelay, ClosingFreesAWorkerThatWaitsAndDropsTheRest)
{
    Emitter emitter;
    RipRelay relay;
    relay.attach(&emitter.worker);
    qsizetype received = 0;
    QObject::connect(&relay, &RipRelay::sectorsDone,
                     [&](const QList<SectorResult>& some) { received += some.size(); });
    std::atomic<quint32> emitted = 0;
    emitter.start([&](RipWorker& worker) {
        for (quint32 lba = 0; lba < 2 * RipRelay::waitingLimit; ++lba) {
            Q_EMIT worker.sectorDone(sectorAt(lba));
            ++emitted;
        }
    });
    while (emitted < RipRelay::waitingLimit)
        QThread::msleep(1);
    relay.close();
    EXPECT_TRUE(QTest::qWaitFor([&] { return emitter.done.load(); }, 10000));
    EXPECT_EQ(received, 0);
}

TEST(RipRelay, MayGoWhileTheWorkerStillReports)
{
    Emitter emitter;
    auto relay = std::make_unique<RipRelay>();
    relay->attach(&emitter.worker);
    std::atomic<bool> stop = false;
    emitter.start([&](RipWorker& worker) {
        while (!stop)
            Q_EMIT worker.sectorDone(sectorAt(0));
    });
    QTest::qWait(20);
    relay.reset();
    QTest::qWait(20);
    stop = true;
    EXPECT_TRUE(QTest::qWaitFor([&] { return emitter.done.load(); }, 5000));
}

TEST(RipRelay, MayBeDeletedBySomethingItDelivers)
{
    Emitter emitter;
    auto* relay = new RipRelay;
    relay->attach(&emitter.worker);
    int received = 0;
    QObject::connect(relay, &RipRelay::logLine, [&] {
        ++received;
        delete relay;
    });
    emitter.start([](RipWorker& worker) {
        for (int i = 0; i < 10; ++i)
            Q_EMIT worker.logLine(QStringLiteral("line"));
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return emitter.done.load() && received > 0; }, 5000));
    QTest::qWait(20);
    EXPECT_EQ(received, 1);
}

TEST(RipRelay, MayBeDeletedInALaterTurn)
{
    Emitter emitter;
    auto* relay = new RipRelay;
    relay->attach(&emitter.worker);
    int received = 0;
    QObject::connect(relay, &RipRelay::logLine, [&] {
        if (++received == 2)
            delete relay;
        else
            QThread::msleep(RipRelay::turnMilliseconds); // the next line is for another turn
    });
    emitter.start([](RipWorker& worker) {
        for (int i = 0; i < 10; ++i)
            Q_EMIT worker.logLine(QStringLiteral("line"));
    });
    while (!emitter.done)
        QThread::msleep(1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return received > 1; }, 60000));
    QTest::qWait(20);
    EXPECT_EQ(received, 2);
}

TEST(RipRelay, GoesOnInsideAnEventLoopThatASlotRuns)
{
    Emitter emitter;
    RipRelay relay;
    relay.attach(&emitter.worker);
    QStringList seen;
    QEventLoop nested;
    QObject::connect(&relay, &RipRelay::logLine, [&](const QString& line) {
        seen << line;
        if (line == QLatin1String("box"))
            nested.exec();
        else if (line == QLatin1String("end"))
            nested.quit();
    });
    emitter.start([&](RipWorker& worker) {
        Q_EMIT worker.logLine(QStringLiteral("box"));
        while (!nested.isRunning())
            QThread::msleep(1);
        Q_EMIT worker.logLine(QStringLiteral("inside"));
        Q_EMIT worker.logLine(QStringLiteral("end"));
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return seen.size() == 3; }, 5000));
    EXPECT_EQ(seen, (QStringList{"box", "inside", "end"}));
}
