// Sectors for which a drive delivers noise after long tries of its own: what they
// cost through CdDrive, and that none is given up that can be had.

#include "disc/CdDrive.h"
#include "support/DiscMaker.h"
#include "support/DriveShim.h"
#include "support/SimulatedDrive.h"

#include <QHash>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace {

using Command = SimulatedDrive::Command;
constexpr qint64 second = 1'000'000'000;
constexpr quint32 firstDead = 560;
constexpr quint32 lastDead = 571;

class DeadSpot : public ::testing::TestWithParam<bool> {
protected:
    void SetUp() override
    {
        simulated.audio = makeAudio(6000, 9);
        openDrive();
    }

    void openDrive()
    {
        ASSERT_TRUE(drive.open(simulated.letter));
        ASSERT_FALSE(drive.readToc().tracks.isEmpty());
        if (GetParam()) {
            ASSERT_TRUE(drive.probeC2(5000));
            drive.setC2Enabled(true);
        }
        simulated.commands.clear();
    }

    void damage(SectorFault fault)
    {
        fault.nanoseconds = second;
        simulated.mechanism.faults = {fault};
    }

    /// Every other reading of the sectors in the middle becomes another noise.
    void spoilEveryOtherReading()
    {
        const auto spoil = [this](quint32 lba, std::span<quint8> data, size_t stride) {
            for (size_t start = 0; start < data.size(); start += stride, ++lba) {
                if (lba < firstDead || lba > lastDead || ++readings[lba] % 2 == 0)
                    continue;
                WrongPattern{scramble(5, lba, readings[lba]), RAW_SECTOR_BYTES}.spoil(
                    data.subspan(start, RAW_SECTOR_BYTES));
                if (stride == RAW_PLUS_C2_BYTES)
                    data[start + RAW_SECTOR_BYTES] = 0xFF;
            }
        };
        bend(spoil);
    }

    /// Each reading of the sectors in the middle begins at another place of the disc, and
    /// is flagged.
    void moveEachReading()
    {
        const auto move = [this](quint32 lba, std::span<quint8> data, size_t stride) {
            const qsizetype late = 4 * (++commandsMoved * 139 % 5881); // a prime: no place twice
            for (size_t start = 0; start < data.size(); start += stride, ++lba) {
                if (lba < firstDead || lba > lastDead)
                    continue;
                const QByteArray found =
                    simulated.audio.mid(qsizetype{lba} * RAW_SECTOR_BYTES + late, RAW_SECTOR_BYTES);
                std::copy(found.cbegin(), found.cend(), data.begin() + static_cast<ptrdiff_t>(start));
                if (stride == RAW_PLUS_C2_BYTES)
                    data[start + RAW_SECTOR_BYTES] = 0xFF;
            }
        };
        bend(move);
    }

    void bend(const std::function<void(quint32, std::span<quint8>, size_t)>& sectors)
    {
        shim.onRaw = [sectors](quint32 lba, std::span<quint8> data, bool, DriveReply&) {
            sectors(lba, data, RAW_SECTOR_BYTES);
        };
        shim.onPassThrough = [sectors](std::span<const quint8> command, std::span<quint8> data, DriveReply&) {
            if (command[0] == 0xBE)
                sectors(static_cast<quint32>(command[4] << 8 | command[5]), data, RAW_PLUS_C2_BYTES);
        };
    }

    QByteArray truth(quint32 lba) const
    {
        return simulated.audio.mid(qsizetype{lba} * RAW_SECTOR_BYTES, RAW_SECTOR_BYTES);
    }

    /// As a rip does it: one pass with C2, else two, and 20 re-reads of what is in doubt.
    void ripStretch(quint32 first, quint32 last)
    {
        QHash<quint32, QByteArray> firstPass;
        for (quint32 lba = first; lba <= last && !GetParam(); ++lba)
            firstPass[lba] = drive.readSector(lba);
        if (!GetParam())
            drive.flushDriveCache(first);
        for (quint32 lba = first; lba <= last; ++lba) {
            const QByteArray sector = drive.readSector(lba);
            const bool trusted = GetParam() ? drive.lastC2Errors() == 0 : sector == firstPass[lba];
            if (!sector.isEmpty() && trusted) {
                EXPECT_EQ(sector, truth(lba)) << lba;
                continue;
            }
            doubtful.append(lba);
            for (int turn = 0; turn < 20; ++turn) {
                const QByteArray again = drive.readSectorFresh(lba);
                refused += again.isEmpty() ? 1 : 0;
                had[lba] += again == truth(lba) ? 1 : 0;
            }
        }
    }

    qsizetype readingsOf(quint32 lba) const
    {
        return std::count_if(simulated.commands.cbegin(), simulated.commands.cend(),
                             [=](const Command& command) {
                                 return command.kind != Command::Sleep && command.lba <= lba
                                        && lba < command.lba + command.count;
                             });
    }

    SimulatedDrive simulated;
    DriveShim shim{simulated};
    DrivePlatformOverride override{shim};
    CdDrive drive;
    QHash<quint32, int> readings;
    qsizetype commandsMoved = 0;
    QList<quint32> doubtful;
    QHash<quint32, int> had;
    int refused = 0;
};

} // namespace

TEST_P(DeadSpot, CostsFiveReadingsOfEachOfItsSectors)
{
    simulated.mechanism.faults = {SectorFault::deadSpot(firstDead, lastDead)};
    const qint64 before = simulated.nowNanoseconds();
    ripStretch(540, 700);
    EXPECT_EQ(doubtful.size(), 12);
    for (quint32 lba = firstDead; lba <= lastDead; ++lba)
        EXPECT_EQ(readingsOf(lba), 5) << lba;
    EXPECT_LE(simulated.nowNanoseconds() - before, 12 * 5 * second + second) << "and some quick reads";

    simulated.commands.clear();
    EXPECT_TRUE(drive.readSectorFresh(firstDead).isEmpty());
    EXPECT_TRUE(drive.readSector(lastDead).isEmpty());
    EXPECT_EQ(drive.lastRetries(), 35U);
    EXPECT_TRUE(simulated.commands.isEmpty());
}

// The pass goes on from the drive's memory behind a vote.
TEST_P(DeadSpot, CostsThatWhereverItLiesAndWhateverTheDriveHolds)
{
    simulated.mechanism.cacheSectors = 60;
    for (quint32 shift = 0; shift < 27; shift += 5) {
        openDrive();
        simulated.mechanism.faults = {SectorFault::deadSpot(firstDead + shift, lastDead + shift)};
        const qint64 before = simulated.nowNanoseconds();
        ripStretch(540, 700);
        EXPECT_LE(simulated.nowNanoseconds() - before, 12 * 5 * second + second) << shift;
    }
}

TEST_P(DeadSpot, IsForgottenWhenTheDriveIsOpenedAgain)
{
    simulated.mechanism.faults = {SectorFault::deadSpot(firstDead, lastDead)};
    ripStretch(540, 600);
    simulated.mechanism.faults.clear();
    EXPECT_TRUE(drive.readSectorFresh(firstDead).isEmpty());
    openDrive();
    EXPECT_EQ(drive.readSectorFresh(firstDead), truth(firstDead));
}

TEST_P(DeadSpot, IsNoneWhereASectorIsLegibleNowAndThen)
{
    damage(SectorFault::slow(firstDead, lastDead));
    spoilEveryOtherReading();
    ripStretch(540, 600);
    EXPECT_GE(doubtful.size(), 6);
    EXPECT_EQ(refused, 0);
    for (const quint32 lba : std::as_const(doubtful))
        EXPECT_EQ(had[lba], 10) << lba;
}

TEST_P(DeadSpot, IsNoneWhereAFewBytesAreWrongEachTime)
{
    damage(SectorFault::flaky(firstDead, lastDead, 1));
    ripStretch(540, 600);
    EXPECT_EQ(doubtful.size(), 12);
    EXPECT_EQ(refused, 0);
}

// As a slow drive without a sense of place reads: what it delivers is music.
TEST_P(DeadSpot, IsNoneWhereEachReadingBeginsAtAnotherSample)
{
    damage(SectorFault::slow(firstDead, lastDead));
    moveEachReading();
    ripStretch(540, 600);
    EXPECT_EQ(doubtful.size(), 12);
    EXPECT_EQ(refused, 0);
}

TEST_P(DeadSpot, IsNoneWhereSoundSectorsAreSlow)
{
    damage(SectorFault::slow(firstDead, lastDead));
    ripStretch(540, 600);
    EXPECT_TRUE(doubtful.isEmpty());
    for (int turn = 0; turn < 20; ++turn)
        EXPECT_EQ(drive.readSectorFresh(firstDead + 5), truth(firstDead + 5));
}

// Not by the way to it, nor by attempts that failed before: the fifth noise is a quick one.
TEST_P(DeadSpot, IsJudgedByTheTimeOfTheCommandThatDelivered)
{
    int failures = 0;
    const auto fail = [&failures](quint32 lba, DriveReply& reply) {
        if (lba == firstDead && failures > 0 && failures-- > 0)
            reply = {false, 5};
    };
    shim.onRaw = [fail](quint32 lba, std::span<quint8>, bool, DriveReply& reply) { fail(lba, reply); };
    shim.onPassThrough = [fail](std::span<const quint8> command, std::span<quint8>, DriveReply& reply) {
        fail(static_cast<quint32>(command[4] << 8 | command[5]), reply);
    };
    for (const int failuresInFront : {0, 3}) {
        openDrive();
        simulated.commandNanoseconds = 1'000'000;
        simulated.mechanism.faults = {SectorFault::deadSpot(firstDead, lastDead)};
        drive.readSector(firstDead);
        for (int turn = 0; turn < 3; ++turn)
            drive.readSectorFresh(firstDead);

        simulated.mechanism.faults[0].nanoseconds = 0;
        simulated.commandNanoseconds = second / 5;
        failures = failuresInFront;
        drive.readSector(5000);
        const qint64 before = simulated.nowNanoseconds();
        drive.readSector(firstDead);
        EXPECT_GE(simulated.nowNanoseconds() - before, second / 2);
        EXPECT_EQ(failures, 0);
        for (int turn = 0; turn < 10; ++turn)
            EXPECT_FALSE(drive.readSectorFresh(firstDead).isEmpty());
    }
}

INSTANTIATE_TEST_SUITE_P(Modes, DeadSpot, ::testing::Bool(),
                         [](const auto& mode) { return mode.param ? "C2" : "Compare"; });
