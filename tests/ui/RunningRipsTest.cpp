#include "ui/RunningRipsStage.h"

#include "ui/AbruptEnd.h"
#include "ui/HeldRip.h"
#include "ui/RecordedEnd.h"
#include "ui/RipRelay.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTest>
#include <QThread>

#include <gtest/gtest.h>

class RunningRipsTest : public RunningRipsStage {};

TEST_F(RunningRipsTest, WhatARipReportsComesOutAndNothingIsLeft)
{
    RunningRips rips;
    QStringList seen;
    QObject::connect(&rips, &RunningRips::logLine,
                     [&seen](const QString&) { seen << QStringLiteral("log"); });
    QObject::connect(&rips, &RunningRips::statusText,
                     [&seen](const QString&) { seen << QStringLiteral("status"); });
    QObject::connect(&rips, &RunningRips::trackStarted, [&seen](int number, int total, const QString& title) {
        seen << QStringLiteral("start %1/%2 %3").arg(number).arg(total).arg(title);
    });
    QObject::connect(&rips, &RunningRips::trackDone, [&seen](const RipResult& result) {
        seen << QStringLiteral("done %1 %2").arg(result.trackNumber).arg(result.ok);
    });
    QObject::connect(&rips, &RunningRips::finished, [&] {
        EXPECT_EQ(QThread::currentThread(), rips.thread());
        EXPECT_EQ(threads(rips), 1) << "a slot still finds the rip under way";
        seen << QStringLiteral("finished");
    });
    rips.start(conversion(QStringLiteral("Song")));
    EXPECT_EQ(threads(rips), 1);
    ASSERT_TRUE(QTest::qWaitFor([&] { return threads(rips) == 0; }, 60000));
    seen.removeAll(QStringLiteral("log"));
    seen.removeAll(QStringLiteral("status"));
    EXPECT_EQ(seen.last(3), (QStringList{"start 1/1 Song", "done 1 1", "finished"}));
    EXPECT_EQ(seen.count(QStringLiteral("finished")), 1);
    // Below a folder named after that of the source.
    EXPECT_TRUE(QFileInfo::exists(
        QDir(output()).filePath(QDir(folder.path()).dirName() + QStringLiteral("/01. Song.wav"))));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(rips.children().isEmpty()) << "neither a thread nor a relay";
}

TEST_F(RunningRipsTest, TheSectorsLinesAndStatesOfAnImageComeOut)
{
    CdDrive drive;
    RunningRips rips;
    qsizetype sectors = 0;
    QStringList lines;
    bool finished = false;
    QObject::connect(&rips, &RunningRips::sectorsDone,
                     [&sectors](const QList<SectorResult>& some) { sectors += some.size(); });
    QObject::connect(&rips, &RunningRips::logLine, [&lines](const QString& line) { lines << line; });
    QObject::connect(&rips, &RunningRips::finished, [&finished] { finished = true; });
    rips.start(imageRip(drive));
    // Whatever a rip says of itself, in place of a run that says all.
    auto* relay = rips.findChild<RipRelay*>();
    ASSERT_NE(relay, nullptr);
    QString status;
    QObject::connect(&rips, &RunningRips::statusText, [&status](const QString& text) { status = text; });
    Q_EMIT relay->statusText(QStringLiteral("state"));
    EXPECT_EQ(status, QStringLiteral("state"));
    Q_EMIT relay->logLine(QStringLiteral("line"));
    EXPECT_EQ(lines.last(), QStringLiteral("line"));
    ASSERT_TRUE(QTest::qWaitFor([&finished] { return finished; }, 60000));
    EXPECT_EQ(sectors, 100);
}

TEST_F(RunningRipsTest, TwoAtOnceEndOneByOne)
{
    HeldStart held;
    CdDrive drive;
    RunningRips rips;
    int finished = 0;
    QObject::connect(&rips, &RunningRips::finished, [&finished] { ++finished; });
    rips.start(imageRip(drive));
    ASSERT_TRUE(QTest::qWaitFor([&held] { return held.gate.isHolding(); }, 60000));
    rips.start(conversion(QStringLiteral("Song")));
    ASSERT_TRUE(QTest::qWaitFor([&] { return threads(rips) == 1; }, 60000)) << "the conversion has gone";
    EXPECT_EQ(finished, 1);
    EXPECT_TRUE(drive.isBorrowed()) << "the other goes on";
    held.gate.open();
    ASSERT_TRUE(QTest::qWaitFor([&] { return threads(rips) == 0; }, 60000));
    EXPECT_EQ(finished, 2);
    EXPECT_FALSE(drive.isBorrowed());
}

TEST_F(RunningRipsTest, WhoGoesWhileARipRunsStopsItAndHearsNoMore)
{
    HeldStart held;
    CdDrive drive;
    RecordedEnd end([] {});
    const AbruptEndOverride inPlace(end);
    bool heard = false;
    {
        RunningRips rips;
        rips.start(imageRip(drive));
        ASSERT_TRUE(QTest::qWaitFor([&held] { return held.gate.isHolding(); }, 60000));
        QObject::connect(&rips, &RunningRips::finished, [&heard] { heard = true; });
        held.gate.open();
    }
    QCoreApplication::processEvents();
    EXPECT_FALSE(heard);
    EXPECT_EQ(end.calls, 0);
    EXPECT_FALSE(drive.isBorrowed());
}

// Let on only when the time that it was given is over, so that it is asked before.
TEST_F(RunningRipsTest, ARipThatIsStoppedWritesNoFurtherTrack)
{
    HeldStart held;
    CdDrive drive;
    RecordedEnd end([&held] { held.gate.open(); });
    const AbruptEndOverride inPlace(end);
    auto rips = std::make_unique<RunningRips>();
    rips->start(imageRip(drive));
    ASSERT_TRUE(QTest::qWaitFor([&held] { return held.gate.isHolding(); }, 60000));
    rips.reset();
    EXPECT_EQ(end.calls, 1);
    EXPECT_FALSE(QFileInfo::exists(output() + QStringLiteral("/01. Alpha.wav")));
}

TEST_F(RunningRipsTest, ASlotOfTheEndMayTakeItAway)
{
    auto rips = std::make_unique<RunningRips>();
    QObject::connect(rips.get(), &RunningRips::finished, [&rips] { rips.reset(); });
    rips->start(conversion(QStringLiteral("Song")));
    EXPECT_TRUE(QTest::qWaitFor([&rips] { return !rips; }, 60000));
}
