// What a disc run says beside the verdicts: the speed of each sector, the
// cross-check's count, and the lines of the debug log.

#include <gtest/gtest.h>

#include "RunRecorder.h"
#include "ScriptedDrive.h"
#include "support/LogCapture.h"

#include <QRegularExpression>

namespace {

class DiscRunValues : public ::testing::Test {
protected:
    void load(int sectors, const QList<SimulatedTrack>& tracks = {{0}})
    {
        disc.audio = makeAudio(sectors, 12);
        disc.tracks = tracks;
    }

    /// What the run says of the drive and of its cross-checks in the debug log.
    QStringList rip(int rereads = 20)
    {
        const LogCapture log;
        run.ripDisc(folder.path(), rereads);
        lines = log.lines();
        const QRegularExpression ofTheRun(QStringLiteral("^\\[RipWorker\\] (Drive|Cross-check)"));
        warnings = log.warnings().filter(ofTheRun);
        return log.debugLines().filter(ofTheRun);
    }

    QTemporaryDir folder;
    ScriptedDrive disc{0};
    DrivePlatformOverride platform{disc};
    RunRecorder run;
    QStringList lines; ///< of all subjects
    QStringList warnings;
};

const QString mismatches = QStringLiteral("[RipWorker] Cross-check mismatches this disc: ");
const QString mismatchAt = QStringLiteral("[RipWorker] Cross-check mismatch at LBA ");

} // namespace

TEST_F(DiscRunValues, SpeedIsThatOfTheMomentAfterTheReadAndInFrontOfAnyReread)
{
    load(150);
    disc.commandNanoseconds = 100'000'000;
    disc.script(0, {{false, 3, 7}, {true}, {true}});
    QList<quint32> speedsOfTheDrive;
    QObject::connect(&run.worker, &RipWorker::sectorDone,
                     [&] { speedsOfTheDrive.append(run.drive.speedKBs()); });
    rip();
    ASSERT_EQ(run.sectors.size(), 150);
    EXPECT_EQ(run.sectors[0].speed, 620U) << "27 * 2352 / 1024 KiB in 0.1 s";
    EXPECT_EQ(run.sectors[0].retries, 2);
    EXPECT_LT(speedsOfTheDrive[0], 620U) << "the re-reads took longer";
    EXPECT_GT(speedsOfTheDrive[0], 0U);
    for (qsizetype lba = 1; lba < 150; ++lba)
        EXPECT_EQ(run.sectors[lba].speed, speedsOfTheDrive[lba]) << lba;
    EXPECT_GT(run.sectors[149].speed, run.sectors[1].speed) << "the average rises again";
}

TEST_F(DiscRunValues, SpeedIsGivenInCompareModeToo)
{
    load(60);
    disc.c2Available = false;
    disc.commandNanoseconds = 100'000'000;
    rip();
    ASSERT_EQ(run.sectors.size(), 60);
    for (const SectorResult& record : std::as_const(run.sectors)) {
        EXPECT_GT(record.speed, 0U) << record.lba;
        EXPECT_LE(record.speed, 620U) << record.lba;
    }
}

TEST_F(DiscRunValues, ASectorThatCannotBeReadHasNoSpeed)
{
    load(60);
    disc.commandNanoseconds = 100'000'000;
    disc.failReads(27, 1000);
    rip(1);
    ASSERT_EQ(run.sectors.size(), 60);
    EXPECT_TRUE(run.sectors[27].bad);
    EXPECT_EQ(run.sectors[27].speed, 0U);
    EXPECT_GT(run.sectors[26].speed, 0U);
}

TEST_F(DiscRunValues, ACleanDiscHasNoMismatchesAndSaysSo)
{
    load(150);
    EXPECT_EQ(rip(), (QStringList{QStringLiteral("[RipWorker] Drive is USB: false -> keepalive disabled"),
                                  mismatches + QLatin1Char('0')}));
    EXPECT_TRUE(warnings.isEmpty());
}

// Sectors 2000 and 1000 would be looked at if the disc's first sector or the
// second audio track's counted.
TEST_F(DiscRunValues, TheCrossCheckCountsFromTheFirstAudioTrackAndItsMismatchesAreCounted)
{
    load(2300, {{0, true}, {100}, {1000}});
    for (const quint32 lba : {100U, 1000U, 2000U, 2100U})
        disc.script(lba, {{false, 6, 0}});
    const QStringList said = rip();
    ASSERT_EQ(run.sectors.size(), 2200);
    for (const SectorResult& record : std::as_const(run.sectors)) {
        const bool wrong = record.lba == 100 || record.lba == 2100;
        EXPECT_EQ(record.mismatch, wrong) << record.lba;
        EXPECT_EQ(record.clean, !wrong) << record.lba;
    }
    EXPECT_EQ(said.constLast(), mismatches + QLatin1Char('2'));
    EXPECT_EQ(warnings,
              (QStringList{mismatchAt + QStringLiteral("100"), mismatchAt + QStringLiteral("2100")}));
    ASSERT_EQ(run.results.size(), 2);
    EXPECT_EQ(run.results[0].errorSectors, 1U);
    EXPECT_EQ(run.results[1].errorSectors, 1U);
}

TEST_F(DiscRunValues, ACrossCheckWithoutACopyIsNoMismatch)
{
    load(150);
    disc.script(0, {{false, 6, 0}});
    disc.failReads(0, 1);
    EXPECT_EQ(rip().constLast(), mismatches + QLatin1Char('0'));
    EXPECT_TRUE(warnings.isEmpty());
}

TEST_F(DiscRunValues, TheBusIsReportedInFrontOfTheProbe)
{
    load(30);
    disc.usb = true;
    const QStringList said = rip();
    EXPECT_EQ(said.value(0), QStringLiteral("[RipWorker] Drive is USB: true -> keepalive enabled"));
    const qsizetype probe = lines.indexOf(QStringLiteral("[CdDrive] C2: supported"));
    EXPECT_GE(probe, 0);
    EXPECT_LT(lines.indexOf(said.value(0)), probe);
}
