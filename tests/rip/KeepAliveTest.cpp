// The place of the command that keeps a USB drive awake.

#include <gtest/gtest.h>

#include "RunRecorder.h"
#include "ScriptedDrive.h"

namespace {

using Command = SimulatedDrive::Command;

class KeepAlive : public ::testing::Test {
protected:
    void rip(int sectors)
    {
        disc.audio = makeAudio(sectors, 12);
        disc.usb = true;
        run.ripDisc(folder.path());
    }

    /// Places among the commands, in order.
    QList<qsizetype> placesOf(const Command& wanted) const
    {
        QList<qsizetype> places;
        for (qsizetype place = 0; place < disc.commands.size(); ++place) {
            if (disc.commands[place] == wanted)
                places.append(place);
        }
        return places;
    }

    void expectTouchedBehind(qsizetype place) const
    {
        EXPECT_EQ(disc.commands.mid(place + 1, 2), (QList<Command>{{Command::Verify}, {Command::Toc}}))
            << place;
    }

    QTemporaryDir folder;
    ScriptedDrive disc{0};
    DrivePlatformOverride platform{disc};
    RunRecorder run;
};

} // namespace

// 2700 is the first sector that is a multiple of 100 and begins a batch of 27.
TEST_F(KeepAlive, FollowsTheReadOfItsSectorInBothPassesOfCompareMode)
{
    disc.c2Available = false;
    rip(2760);
    const QList<qsizetype> reads = placesOf({Command::Raw, 2700, 27});
    ASSERT_EQ(reads.size(), 2) << "one a pass";
    for (const qsizetype place : reads)
        expectTouchedBehind(place);
    EXPECT_EQ(disc.count(Command::Toc), 1 + 2 * 27);
}

// The re-reads of sector 73 leave the batch in front of sector 100.
TEST_F(KeepAlive, FollowsTheReadOfItsSectorInFrontOfItsRereads)
{
    for (const quint32 flagged : {73U, 100U})
        disc.script(flagged, {{false, 3, 7}});
    rip(200);
    const QList<qsizetype> reads = placesOf({Command::RawWithC2, 100, 27});
    ASSERT_EQ(reads.size(), 3) << "the pass and two re-reads";
    expectTouchedBehind(reads[0]);
    EXPECT_EQ(disc.count(Command::Toc), 1 + 1) << "not for the re-reads";
    EXPECT_EQ(run.sectors.at(100).retries, 2);
}

// A sector out of the batch is touched for all the same: between its verdict
// and that of the sector in front.
TEST_F(KeepAlive, ComesWithItsSectorWhereNoReadWasNeeded)
{
    QList<qsizetype> touches;
    QObject::connect(&run.worker, &RipWorker::sectorDone, [&] { touches.append(disc.count(Command::Toc)); });
    rip(250);
    ASSERT_EQ(touches.size(), 250);
    for (qsizetype lba = 0; lba < 250; ++lba)
        EXPECT_EQ(touches[lba], 1 + lba / 100) << lba;
}
