// When the drive is sent far away, and what is not asked of it again.

#include "disc/ColdReads.h"

#include "base/ByteOrder.h"
#include "disc/DiscModel.h"
#include "support/DiscMaker.h"
#include "support/SimulatedDrive.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <optional>
#include <vector>

namespace {

using Command = SimulatedDrive::Command;
using Effort = ColdReads::Effort;

class ColdReadsTest : public ::testing::Test {
protected:
    ColdReadsTest()
    {
        drive.audio = makeAudio(500, 4);
        drive.leadOutLba = 30'000;
        cold.setAudioArea({0, 30'000});
    }

    DriveReply read(quint32 lba, quint32 count = 27, bool guarded = true)
    {
        std::vector<quint8> data(size_t{count} * RAW_SECTOR_BYTES);
        return cold.readRaw(lba, count, data, guarded);
    }

    DriveReply readWithC2(quint32 lba, quint32 count)
    {
        std::array<quint8, 12> command{0xBE, 0x04};
        byteorder::writeBig(command.data() + 2, lba);
        command[8] = static_cast<quint8>(count);
        command[9] = 0x12;
        std::vector<quint8> data(size_t{count} * RAW_PLUS_C2_BYTES);
        return cold.passThrough(command, data);
    }

    /// Places of the reads since the last look.
    QList<quint32> places()
    {
        QList<quint32> found;
        for (const Command& command : std::as_const(drive.commands)) {
            if (command.kind == Command::ModeSense)
                continue;
            EXPECT_EQ(command.count, 27U);
            EXPECT_EQ(command.kind, Command::Raw) << "guarded, so that a far place cannot hang";
            found.append(command.lba);
        }
        drive.commands.clear();
        return found;
    }

    SimulatedDrive drive;
    ColdReads cold{drive.open(drive.letter)};
};

void expectFarFrom(const QList<quint32>& places, quint32 lba)
{
    for (const quint32 place : places)
        EXPECT_GE(place > lba ? place - lba : lba - place, FAR_DISTANCE);
}

} // namespace

TEST_F(ColdReadsTest, WhatWasNotHandedOutIsCold)
{
    read(1000);
    drive.commands.clear();
    cold.makeCold(1000, 27, Effort::Once);
    cold.makeAllCold(1000);
    EXPECT_TRUE(drive.commands.isEmpty());
}

TEST_F(ColdReadsTest, ASectorThatWasHandedOutTakesAFarRead)
{
    read(1000);
    cold.handedOut(1003);
    places();
    for (const quint32 first : {977U, 1003U}) {
        cold.makeCold(first, 27, Effort::Once);
        const QList<quint32> far = places();
        EXPECT_EQ(far.size(), 1) << "a batch from " << first << " reaches or holds 1003";
        expectFarFrom(far, 1000);
        cold.handedOut(1003);
    }
    cold.makeCold(976, 27, Effort::Once);
    cold.makeCold(1004, 27, Effort::Once);
    EXPECT_TRUE(drive.commands.isEmpty()) << "976 to 1002, and 1004 to 1030";
}

TEST_F(ColdReadsTest, OneTripIsEnoughForAllThatWasHandedOutBefore)
{
    for (quint32 lba = 1000; lba < 1027; ++lba)
        cold.handedOut(lba);
    cold.makeCold(1000, 27, Effort::Once);
    places();
    cold.makeCold(1005, 27, Effort::Once);
    EXPECT_TRUE(drive.commands.isEmpty());
    cold.handedOut(1005);
    cold.makeCold(1005, 1, Effort::Once);
    EXPECT_EQ(places().size(), 1);
}

TEST_F(ColdReadsTest, AThoroughTripGoesToThreePlacesApart)
{
    cold.handedOut(1000);
    cold.makeCold(1000, 27, Effort::Thorough);
    const QList<quint32> far = places();
    ASSERT_EQ(far.size(), 3);
    expectFarFrom(far, 1000);
    expectFarFrom(far.mid(1), far[0]);
    expectFarFrom(far.mid(2), far[1]);
}

// 16 MiB are 7133 sectors.
TEST_F(ColdReadsTest, WhatTheDriveSaysOfItsBufferMakesTheWayLongerAndNeverShorter)
{
    struct Case {
        std::optional<quint16> announced;
        quint32 least;
    };
    for (const Case& one : {Case{std::nullopt, 3594}, Case{64, 3594}, Case{8192, 3594}, Case{16384, 7160}}) {
        drive.announcedKiB = one.announced;
        ColdReads asked{drive.open(drive.letter)};
        asked.setAudioArea({0, 330'000});
        drive.commands.clear();
        asked.handedOut(1000);
        asked.makeCold(1000, 1, Effort::Once);
        EXPECT_EQ(drive.count(Command::ModeSense), 0) << "a disc without a fault is not charged for it";
        for (int turn = 0; turn < 3; ++turn) {
            drive.commands.removeIf(
                [](const Command& command) { return command.kind != Command::ModeSense; });
            asked.handedOut(1000);
            asked.makeCold(1000, 1, Effort::Thorough);
        }
        EXPECT_EQ(drive.count(Command::ModeSense), 1);
        for (const quint32 place : places())
            EXPECT_GE(place > 1000 ? place - 1000 : 1000 - place, one.least);
    }
}

TEST_F(ColdReadsTest, AFarPlaceIsFarFromWhereTheDriveIsAsWell)
{
    for (quint32 lba = 0; lba < 20'000; ++lba)
        cold.handedOut(lba);
    read(19'980);
    drive.commands.clear();
    cold.makeAllCold(0);
    const QList<quint32> far = places();
    EXPECT_EQ(far.size(), 1);
    expectFarFrom(far, 0);
    expectFarFrom(far, 19'980);
}

TEST_F(ColdReadsTest, ATripKeepsAwayFromHoles)
{
    cold.handedOut(1000);
    cold.makeCold(1000, 1, Effort::Once);
    const quint32 first = places().value(0);
    cold.holes().add(first + 26);
    cold.handedOut(1000);
    read(1000);
    drive.commands.clear();
    cold.makeCold(1000, 1, Effort::Once);
    const QList<quint32> far = places();
    ASSERT_EQ(far.size(), 1);
    EXPECT_NE(far[0], first);
}

TEST_F(ColdReadsTest, ASecondTripGoesElsewhere)
{
    cold.handedOut(1000);
    cold.makeCold(1000, 1, Effort::Once);
    const QList<quint32> first = places();
    cold.handedOut(1000);
    cold.makeCold(1000, 1, Effort::Once);
    ASSERT_EQ(first.size(), 1);
    expectFarFrom(places(), first[0]);
}

TEST_F(ColdReadsTest, AFarPlaceThatCannotBeReadIsTakenForAnotherAndNotTriedAgain)
{
    cold.handedOut(1000);
    cold.makeCold(1000, 1, Effort::Once);
    const quint32 first = places().value(0);
    drive.mechanism.faults = {SectorFault::unreadable(first, first)};
    cold.handedOut(1000);
    read(1000);
    drive.commands.clear();
    cold.makeCold(1000, 1, Effort::Once);
    const QList<quint32> far = places();
    ASSERT_EQ(far.size(), 2);
    EXPECT_EQ(far[0], first);
    expectFarFrom({far[1]}, 1000);
    cold.handedOut(1000);
    read(1000);
    drive.commands.clear();
    cold.makeCold(1000, 1, Effort::Once);
    EXPECT_EQ(places(), QList<quint32>{far[1]});
}

TEST_F(ColdReadsTest, ATripThatFailedIsTriedAgain)
{
    drive.mechanism.faults = {SectorFault::unreadable(1027, 29'999)};
    cold.handedOut(1000);
    cold.makeCold(1000, 1, Effort::Once);
    EXPECT_FALSE(drive.commands.isEmpty());
    drive.mechanism.faults.clear();
    drive.commands.clear();
    cold.makeCold(1000, 1, Effort::Once);
    EXPECT_FALSE(drive.commands.isEmpty()) << "nothing says that the drive has forgotten";
}

TEST_F(ColdReadsTest, WhenNoPlaceIsLeftThoseThatFailedOnceAreTriedAgain)
{
    drive.mechanism.faults = {SectorFault::unreadable(0, 29'999)};
    cold.handedOut(1000);
    for (int turn = 0; turn < 100; ++turn)
        cold.makeCold(1000, 1, Effort::Once);
    drive.mechanism.faults.clear();
    cold.makeCold(1000, 1, Effort::Once);
    EXPECT_FALSE(cold.wasHandedOut(1000, 1));
}

TEST_F(ColdReadsTest, PlacesThatAreKnownToFailDoNotUseUpATrip)
{
    for (int turn = 0; turn < 4; ++turn) {
        cold.handedOut(1000);
        read(1000);
        drive.commands.clear();
        drive.failingReads = 2;
        cold.makeCold(1000, 1, Effort::Once);
        EXPECT_EQ(places().size(), 3) << "two new ones that fail and one that does not";
        EXPECT_FALSE(cold.wasHandedOut(1000, 1));
    }
}

// The audio begins at 9000, and what has been read ends at 12,027.
TEST_F(ColdReadsTest, ALeadOutFarBeyondTheDiscLeavesTheRangeThatHasBeenRead)
{
    cold.setAudioArea({9000, 400'000});
    read(12'000);
    cold.handedOut(12'000);
    drive.commands.clear();
    drive.mechanism.faults = {SectorFault::unreadable(12'027, 29'999)};
    cold.makeCold(12'000, 1, Effort::Once);
    const QList<quint32> far = places();
    ASSERT_FALSE(far.isEmpty());
    EXPECT_EQ(far.constLast(), 9000U);
    EXPECT_FALSE(cold.wasHandedOut(12'000, 1));
}

// 97 places over the disc, each tried once.
TEST_F(ColdReadsTest, ALeadOutFarBeyondTheDiscCostsNoMoreThanAReadOfEachPlace)
{
    drive.leadOutLba = 10'000;
    cold.setAudioArea({0, 1'150'000});
    read(4100);
    drive.commands.clear();
    for (quint32 turn = 0; turn < 60; ++turn) {
        cold.handedOut(turn);
        cold.makeCold(turn, 1, Effort::Once);
        EXPECT_FALSE(cold.wasHandedOut(turn, 1));
    }
    EXPECT_LE(places().size(), 97 + 60);
}

TEST_F(ColdReadsTest, APlaceIsNotToBlameForADriveThatIsNotThere)
{
    drive.commandsUntilGone = 0;
    cold.handedOut(1000);
    cold.makeCold(1000, 1, Effort::Once);
    const QList<quint32> first = places();
    EXPECT_EQ(first.size(), 1);
    drive.commandsUntilGone = std::nullopt;
    read(1000);
    drive.commands.clear();
    cold.makeCold(1000, 1, Effort::Once);
    EXPECT_EQ(places(), first);
}

TEST_F(ColdReadsTest, ASecondPassComesAfterOneFarReadOnADiscWithoutAFault)
{
    read(1000);
    cold.handedOut(1000);
    drive.commands.clear();
    cold.makeAllCold(1000);
    EXPECT_EQ(places().size(), 1);
}

TEST_F(ColdReadsTest, ASecondPassComesAfterThreeFarReadsOnceTheDiscHasShownAFault)
{
    const auto farReadsOfASecondPass = [this](auto trouble) {
        ColdReads other{drive.open(drive.letter)};
        other.setAudioArea({0, 30'000});
        trouble(other);
        other.handedOut(1000);
        drive.commands.clear();
        other.makeAllCold(1000);
        return places().size();
    };
    std::vector<quint8> data(RAW_SECTOR_BYTES);
    EXPECT_EQ(farReadsOfASecondPass([&](ColdReads& other) {
                  drive.mechanism.faults = {SectorFault::unreadable(2000, 2000)};
                  other.readRaw(2000, 1, data, true);
              }),
              3);
    EXPECT_EQ(farReadsOfASecondPass([](ColdReads& other) {
                  other.handedOut(1000);
                  other.makeCold(1000, 1, Effort::Thorough);
              }),
              3);
    EXPECT_EQ(farReadsOfASecondPass([](ColdReads& other) {
                  other.handedOut(1000);
                  other.makeCold(1000, 1, Effort::Once);
              }),
              1);
    EXPECT_EQ(farReadsOfASecondPass([&](ColdReads& other) {
                  const std::array<quint8, 12> withC2{0xBE, 0x04, 0, 0, 0, 0, 0, 0, 1, 0x12, 0, 0};
                  drive.c2Available = false;
                  std::vector<quint8> sector(RAW_PLUS_C2_BYTES);
                  EXPECT_FALSE(other.passThrough(withC2, sector).ok);
              }),
              1)
        << "that the drive has no pointers is no fault of the disc";
}

TEST_F(ColdReadsTest, WithoutATableOfContentsTripsStayWhereSectorsHaveBeenRead)
{
    cold.setAudioArea({});
    cold.handedOut(10);
    cold.makeCold(10, 1, Effort::Once);
    EXPECT_TRUE(drive.commands.isEmpty());
    read(9000);
    read(20);
    drive.commands.clear();
    cold.makeCold(10, 1, Effort::Once);
    const QList<quint32> far = places();
    ASSERT_EQ(far.size(), 1);
    EXPECT_LE(far[0] + 27, 9027U);
    expectFarFrom(far, 10);
}

TEST_F(ColdReadsTest, AHoleIsAnsweredAtOnceWithTheDrivesWord)
{
    drive.mechanism.faults = {SectorFault::unreadable(1000, 1000)};
    const DriveReply word = read(1000, 1);
    cold.holes().add(1000);
    drive.commands.clear();
    for (const DriveReply& reply : {read(1000, 1), read(990), readWithC2(1000, 1), readWithC2(980, 27)}) {
        EXPECT_FALSE(reply.ok);
        EXPECT_EQ(reply.errorNumber, word.errorNumber);
        EXPECT_EQ(reply.failure, DriveFailure::unreadable);
        EXPECT_EQ(reply.transferred, 0U);
    }
    EXPECT_TRUE(drive.commands.isEmpty());
    EXPECT_TRUE(read(1001).ok);
    EXPECT_TRUE(readWithC2(973, 27).ok);
}

TEST_F(ColdReadsTest, ASeekIsCutShortInFrontOfAHole)
{
    cold.holes().add(1000);
    drive.commands.clear();
    EXPECT_TRUE(read(990, 27, false).ok);
    EXPECT_EQ(drive.commands, (QList<Command>{{Command::SeekRead, 990, 10}}));
    drive.commands.clear();
    EXPECT_FALSE(read(1000, 27, false).ok);
    EXPECT_TRUE(drive.commands.isEmpty());
}

TEST_F(ColdReadsTest, OnlyTheDrivesWordAndHangsCountAgainstASector)
{
    const auto exhausted = [this](const SectorFault& fault) {
        drive.mechanism.faults = {fault};
        for (int i = 0; i < 35; ++i)
            read(fault.first, 1);
        return cold.holes().isExhausted(fault.first);
    };
    EXPECT_TRUE(exhausted(SectorFault::unreadable(1000, 1000)));
    EXPECT_TRUE(exhausted(SectorFault::hanging(1100, 1100)));
    drive.mechanism.faults.clear();
    for (int i = 0; i < 35; ++i)
        EXPECT_FALSE(read(40'000, 1).ok);
    EXPECT_FALSE(cold.holes().isExhausted(40'000)) << "an address beyond the disc is no hole in it";
    drive.commandsUntilGone = 0;
    for (int i = 0; i < 35; ++i)
        EXPECT_EQ(read(1200, 1).errorNumber, ENODEV);
    EXPECT_FALSE(cold.holes().isExhausted(1200)) << "a drive that is gone says nothing of the disc";
}
