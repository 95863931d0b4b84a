#include "disc/CdDrive.h"
#include "support/DiscMaker.h"
#include "support/DriveShim.h"
#include "support/LogCapture.h"
#include "support/SimulatedDrive.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using Command = SimulatedDrive::Command;
using Table = std::span<quint8, 804>;

/// A drive whose table of contents is written byte by byte.
class PhysicalToc : public ::testing::Test {
protected:
    void SetUp() override
    {
        simulated.audio = makeAudio(700, 3);
        ASSERT_TRUE(drive.open(simulated.letter));
    }

    void answer(int first, int last, QList<SimulatedTrack> entries)
    {
        shim.onToc = [=](Table table, DriveReply&) {
            std::ranges::fill(table, quint8{0});
            table[2] = static_cast<quint8>(first);
            table[3] = static_cast<quint8>(last);
            for (qsizetype i = 0; i < entries.size(); ++i)
                putEntry(table, i, entries[i]);
        };
    }

    static void putEntry(Table table, qsizetype place, const SimulatedTrack& track)
    {
        const quint32 frames = track.startLba + 150;
        const auto entry = table.subspan(static_cast<size_t>(4 + 8 * place), 8);
        entry[1] = track.isData ? 0x14 : 0x10;
        entry[5] = static_cast<quint8>(frames / 4500);
        entry[6] = static_cast<quint8>(frames / 75 % 60);
        entry[7] = static_cast<quint8>(frames % 75);
    }

    SimulatedDrive simulated;
    DriveShim shim{simulated};
    DrivePlatformOverride override{shim};
    CdDrive drive;
};

const QList<Command> fiveTries{{Command::Verify}, {Command::Toc}, {Command::Sleep, 300},
                               {Command::Verify}, {Command::Toc}, {Command::Sleep, 300},
                               {Command::Verify}, {Command::Toc}, {Command::Sleep, 300},
                               {Command::Verify}, {Command::Toc}, {Command::Sleep, 300},
                               {Command::Verify}, {Command::Toc}};

QStringList invalidTocLines(int first, int last)
{
    QStringList lines;
    for (int attempt = 1; attempt <= 5; ++attempt) {
        lines.append(
            QStringLiteral("CdDrive: invalid TOC returned (attempt %1 ) FirstTrack= %2 LastTrack= %3")
                .arg(attempt)
                .arg(first)
                .arg(last));
    }
    return lines << QStringLiteral("CdDrive: could not obtain a valid TOC after 5 attempts");
}

} // namespace

TEST_F(PhysicalToc, TracksFollowTheTable)
{
    simulated.tracks = {{0, false}, {74, false}, {300, true}};
    const DiscToc disc = drive.readToc();
    ASSERT_EQ(disc.tracks.size(), 3);
    EXPECT_EQ(disc.totalSectors, 700U);
    EXPECT_EQ(disc.tracks[0].endLba, 73U);
    EXPECT_EQ(disc.tracks[0].seconds, 0) << "74 sectors are less than a second";
    EXPECT_EQ(disc.tracks[1].startLba, 74U);
    EXPECT_EQ(disc.tracks[1].seconds, 3);
    EXPECT_TRUE(disc.tracks[2].isData);
    EXPECT_EQ(disc.tracks[2].endLba, 699U);
    EXPECT_FALSE(disc.isImage);
    EXPECT_EQ(simulated.commands, (QList<Command>{{Command::Verify}, {Command::Toc}}));
}

TEST_F(PhysicalToc, TextsAreEmptyAndNumbersCountFromTheFirstTrack)
{
    answer(4, 5, {{0}, {150}, {700}});
    const DiscToc disc = drive.readToc();
    ASSERT_EQ(disc.tracks.size(), 2);
    EXPECT_EQ(disc.tracks[0], (TrackInfo{4, {}, 0, 149, 2, {}, false, false}));
    EXPECT_EQ(disc.tracks[1], (TrackInfo{5, {}, 150, 699, 7, {}, false, false}));
    EXPECT_TRUE(disc.albumTitle.isEmpty());
    EXPECT_TRUE(disc.albumArtist.isEmpty());
    EXPECT_TRUE(disc.albumYear.isEmpty());
    EXPECT_TRUE(disc.spareText.isEmpty());
}

TEST_F(PhysicalToc, OnlyBitTwoOfTheControlFieldMeansData)
{
    shim.onToc = [](Table table, DriveReply&) {
        std::ranges::fill(table, quint8{0});
        table[2] = 1;
        table[3] = 4;
        for (qsizetype i = 0; i < 5; ++i)
            putEntry(table, i, {static_cast<quint32>(i) * 100, false});
        table[4 + 1] = 0x4B; // the address type is in the upper half
        table[4 + 8 + 1] = 0x14;
        table[4 + 2 * 8 + 1] = 0x04;
        table[4 + 3 * 8 + 1] = 0x1F;
    };
    const DiscToc disc = drive.readToc();
    ASSERT_EQ(disc.tracks.size(), 4);
    EXPECT_FALSE(disc.tracks[0].isData);
    EXPECT_TRUE(disc.tracks[1].isData);
    EXPECT_TRUE(disc.tracks[2].isData);
    EXPECT_TRUE(disc.tracks[3].isData);
}

TEST_F(PhysicalToc, ADriveThatIsNotThereDoesNotOpenAndIsNamedInTheLog)
{
    const LogCapture log;
    EXPECT_FALSE(drive.open(QStringLiteral("/dev/sr7")));
    EXPECT_EQ(log.warnings(), QStringList{QStringLiteral("CdDrive: cannot open /dev/sr7")});
    EXPECT_TRUE(drive.readToc().tracks.isEmpty());
}

TEST_F(PhysicalToc, AClosedDriveIsNotAsked)
{
    drive.close();
    const LogCapture log;
    EXPECT_TRUE(drive.readToc().tracks.isEmpty());
    EXPECT_TRUE(simulated.commands.isEmpty());
    EXPECT_TRUE(log.warnings().isEmpty());
}

TEST_F(PhysicalToc, ImpossibleNumbersAreTriedFiveTimesWithPausesBetween)
{
    const QList<std::pair<int, int>> impossible{{1, 100}, {0, 5}, {5, 4}, {0, 0}, {1, 255}, {200, 201}};
    for (const auto& [first, last] : impossible) {
        SCOPED_TRACE(testing::Message() << first << " to " << last);
        answer(first, last, {{0}, {700}});
        simulated.commands.clear();
        const LogCapture log;
        EXPECT_TRUE(drive.readToc().tracks.isEmpty());
        EXPECT_EQ(simulated.commands, fiveTries);
        EXPECT_EQ(log.warnings(), invalidTocLines(first, last));
    }
}

TEST_F(PhysicalToc, ARefusedTableIsTriedFiveTimesAndTheErrorIsLogged)
{
    shim.onToc = [](Table, DriveReply& reply) { reply = {false, 123}; };
    const LogCapture log;
    EXPECT_TRUE(drive.readToc().tracks.isEmpty());
    EXPECT_EQ(simulated.commands, fiveTries);
    QStringList expected;
    for (int attempt = 1; attempt <= 5; ++attempt)
        expected.append(
            QStringLiteral("CdDrive: IOCTL_CDROM_READ_TOC failed (attempt %1 ): 123").arg(attempt));
    expected.append(QStringLiteral("CdDrive: could not obtain a valid TOC after 5 attempts"));
    EXPECT_EQ(log.warnings(), expected);
}

TEST_F(PhysicalToc, TheFifthTryMaySucceed)
{
    int failures = 4;
    shim.onToc = [&failures](Table, DriveReply& reply) {
        if (failures-- > 0)
            reply = {false, 5};
    };
    const LogCapture log;
    EXPECT_EQ(drive.readToc().tracks.size(), 1);
    EXPECT_EQ(log.warnings().size(), 4);
    EXPECT_EQ(simulated.count(Command::Sleep), 4);
}

TEST_F(PhysicalToc, LeftoversOfAFailedTryAreNotSeenByTheNext)
{
    int tries = 0;
    shim.onToc = [&tries](Table table, DriveReply& reply) {
        if (++tries == 1) {
            std::ranges::fill(table, quint8{0x55});
            reply = {false, 5};
            return;
        }
        EXPECT_EQ(std::ranges::count(table.subspan(4 + 8 * 2), quint8{0}), 804 - 4 - 8 * 2);
    };
    EXPECT_EQ(drive.readToc().tracks.size(), 1);
}

TEST_F(PhysicalToc, ADataTrackOfASecondSessionTakesTheGapOutOfTheLastAudioTrack)
{
    QList<SimulatedTrack> entries;
    for (quint32 track = 0; track < 10; ++track)
        entries.append({track * 15000, false});
    entries.append({165000, true});
    entries.append({200000, false});
    answer(1, 11, entries);
    const DiscToc disc = drive.readToc();
    ASSERT_EQ(disc.tracks.size(), 11);
    EXPECT_EQ(disc.tracks[8].endLba, 134999U);
    EXPECT_EQ(disc.tracks[9].endLba, 165000U - 11401);
    EXPECT_EQ(disc.tracks[9].seconds, (165000 - 11401 - 135000 + 1) / 75);
    EXPECT_EQ(disc.tracks[10].startLba, 165000U);
    EXPECT_EQ(disc.tracks[10].endLba, 199999U);
    EXPECT_EQ(disc.totalSectors, 200000U);
}

TEST_F(PhysicalToc, StartsExactlyAGapApartKeepTheAudioTrackWhole)
{
    answer(1, 2, {{1000, false}, {1000 + 11400, true}, {20000, false}});
    EXPECT_EQ(drive.readToc().tracks[0].endLba, 1000U + 11399);
    answer(1, 2, {{1000, false}, {1000 + 11401, true}, {20000, false}});
    EXPECT_EQ(drive.readToc().tracks[0].endLba, 1000U);
}

TEST_F(PhysicalToc, NoGapIsCutBetweenTwoTracksOfAKindNorBehindData)
{
    answer(1, 4, {{0, true}, {30000, false}, {60000, false}, {90000, false}, {120000, false}});
    const DiscToc disc = drive.readToc();
    EXPECT_EQ(disc.tracks[0].endLba, 29999U);
    EXPECT_EQ(disc.tracks[1].endLba, 59999U);
    EXPECT_EQ(disc.tracks[3].endLba, 119999U);
}

TEST_F(PhysicalToc, NinetyNineTracksFillTheTableToItsEnd)
{
    QList<SimulatedTrack> entries;
    for (quint32 track = 0; track < 100; ++track)
        entries.append({track * 300, false});
    answer(1, 99, entries);
    const DiscToc disc = drive.readToc();
    ASSERT_EQ(disc.tracks.size(), 99);
    EXPECT_EQ(disc.tracks[98].number, 99);
    EXPECT_EQ(disc.tracks[98].startLba, 98U * 300);
    EXPECT_EQ(disc.totalSectors, 99U * 300);
}

TEST_F(PhysicalToc, TrackNinetyNineAloneUsesTheFirstTwoEntries)
{
    answer(99, 99, {{0}, {700}});
    const DiscToc disc = drive.readToc();
    ASSERT_EQ(disc.tracks.size(), 1);
    EXPECT_EQ(disc.tracks[0].number, 99);
    EXPECT_EQ(disc.totalSectors, 700U);
}

TEST_F(PhysicalToc, ADiscOfDataAloneIsAValidTable)
{
    answer(1, 2, {{0, true}, {200, true}, {700, false}});
    const DiscToc disc = drive.readToc();
    ASSERT_EQ(disc.tracks.size(), 2);
    EXPECT_TRUE(disc.tracks[0].isData && disc.tracks[1].isData);
}

TEST_F(PhysicalToc, TracksOfNoLengthEndBeforeTheyStart)
{
    answer(1, 2, {{500}, {500}, {500}});
    const DiscToc disc = drive.readToc();
    ASSERT_EQ(disc.tracks.size(), 2);
    EXPECT_EQ(disc.tracks[0].endLba, 499U);
    EXPECT_EQ(disc.tracks[0].seconds, 0);
    EXPECT_EQ(disc.tracks[1].seconds, 0);
}

TEST_F(PhysicalToc, ALeadOutBeforeTheLastTrackGivesNegativeSecondsAndBoundsTheReads)
{
    answer(1, 2, {{0}, {600}, {300}});
    const DiscToc disc = drive.readToc();
    ASSERT_EQ(disc.tracks.size(), 2);
    EXPECT_EQ(disc.tracks[1].endLba, 299U);
    EXPECT_EQ(disc.tracks[1].seconds, -4) << "(299 - 600 + 1) / 75 is exactly -4";
    EXPECT_EQ(disc.totalSectors, 300U);
    EXPECT_TRUE(drive.readSector(600).isEmpty());
    EXPECT_EQ(simulated.count(Command::Raw), 0);
}

TEST_F(PhysicalToc, AddressesOfAllOnesAreDecodedByTheSameRule)
{
    shim.onToc = [](Table table, DriveReply&) {
        std::ranges::fill(table, quint8{0xFF});
        table[2] = 1;
        table[3] = 99;
    };
    const DiscToc disc = drive.readToc();
    ASSERT_EQ(disc.tracks.size(), 99);
    constexpr quint32 address = (255 * 60 + 255) * 75 + 255 - 150;
    EXPECT_EQ(disc.tracks[98].startLba, address);
    EXPECT_EQ(disc.tracks[98].endLba, address - 1);
    EXPECT_EQ(disc.totalSectors, address);
}

TEST_F(PhysicalToc, AddressesInTheLeadInWrapBelowZeroAndStayHarmless)
{
    answer(1, 1, {});
    const DiscToc disc = drive.readToc();
    ASSERT_EQ(disc.tracks.size(), 1);
    EXPECT_EQ(disc.tracks[0].startLba, 0U - 150);
    EXPECT_EQ(disc.tracks[0].seconds, 0);
    shim.onRaw = [](quint32, std::span<quint8>, bool, DriveReply& reply) { reply = {false, 5}; };
    EXPECT_TRUE(drive.readSector(0xFFFFFF00).isEmpty());
}
