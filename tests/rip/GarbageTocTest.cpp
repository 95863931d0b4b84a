// Tables of contents that no disc should have: the run ends by itself, with a
// result for each audio track and no file that claims what it does not hold.

#include <gtest/gtest.h>

#include "RunRecorder.h"
#include "support/SimulatedDrive.h"

#include <QRandomGenerator>

namespace {

constexpr int discSectors = 150;

struct Entry {
    quint8 control;
    quint8 minute;
    quint8 second;
    quint8 frame;
};

/// The table as bytes: the entries from the first track on, the last of them
/// the lead-out.
QByteArray table(quint8 first, quint8 last, const QList<Entry>& entries)
{
    QByteArray bytes(804, '\0');
    bytes[2] = static_cast<char>(first);
    bytes[3] = static_cast<char>(last);
    for (qsizetype i = 0; i < entries.size(); ++i) {
        char* at = bytes.data() + 4 + i * 8;
        at[1] = static_cast<char>(0x10 | entries[i].control);
        at[5] = static_cast<char>(entries[i].minute);
        at[6] = static_cast<char>(entries[i].second);
        at[7] = static_cast<char>(entries[i].frame);
    }
    return bytes;
}

class GarbageToc : public ::testing::Test {
protected:
    GarbageToc() { drive.audio = makeAudio(discSectors, 3); }

    void rip(const QByteArray& tocBytes)
    {
        drive.tocBytes = tocBytes;
        run.ripDisc(folder.path(), 1);
        EXPECT_EQ(run.finishedCount, 1);
        for (const RipResult& result : std::as_const(run.results))
            EXPECT_EQ(result.ok, result.errorSectors != noSamplesRead) << result.trackNumber;
    }

    QTemporaryDir folder;
    SimulatedDrive drive;
    DrivePlatformOverride platform{drive};
    RunRecorder run;
};

} // namespace

TEST_F(GarbageToc, FirstAboveLastYieldsNoDisc)
{
    rip(table(5, 2, {{0, 0, 2, 0}, {0, 0, 4, 0}}));
    EXPECT_EQ(run.errors, QStringList{QStringLiteral("No drive or tracks")});
}

TEST_F(GarbageToc, Track100YieldsNoDisc)
{
    rip(table(1, 100, {{0, 0, 2, 0}}));
    EXPECT_EQ(run.errors, QStringList{QStringLiteral("No drive or tracks")});
}

TEST_F(GarbageToc, ALeadOutBeforeTheLastTrackFailsThatTrack)
{
    rip(table(1, 2, {{0, 0, 2, 0}, {0, 0, 3, 0}, {0, 0, 2, 50}}));
    ASSERT_EQ(run.results.size(), 2);
    EXPECT_FALSE(run.results[1].ok);
    EXPECT_EQ(run.results[0].errorSectors, 25u) << "track 1 has 75 sectors, the lead-out stands at 50";
}

TEST_F(GarbageToc, MinutesOf255AreNoTrackOfADisc)
{
    rip(table(1, 1, {{0, 0, 2, 0}, {0, 0xFF, 0xFF, 0xFF}}));
    ASSERT_EQ(run.results.size(), 1);
    EXPECT_FALSE(run.results[0].ok);
    EXPECT_TRUE(run.sectors.isEmpty());
}

TEST_F(GarbageToc, AddressesInTheLeadInAreBehindEverything)
{
    rip(table(1, 2, {{0, 0, 0, 0}, {0, 0, 2, 0}, {0, 0, 3, 0}}));
    ASSERT_EQ(run.results.size(), 2);
    EXPECT_EQ(run.results[0].errorSectors, 150u) << "none of its sectors can be read";
    EXPECT_TRUE(run.results[1].ok);
    EXPECT_EQ(run.results[1].errorSectors, 0u);
}

TEST_F(GarbageToc, NinetyNineTracksAreRipped)
{
    QList<Entry> entries;
    for (quint8 i = 0; i < 100; ++i)
        entries.append({0, 0, 2, 0});
    for (quint8 i = 0; i < 100; ++i) {
        entries[i].second = static_cast<quint8>(2 + i / 75);
        entries[i].frame = static_cast<quint8>(i % 75);
    }
    rip(table(1, 99, entries));
    ASSERT_EQ(run.results.size(), 99);
    EXPECT_EQ(run.sectors.size(), 99);
    EXPECT_TRUE(audioOfWave(folder.filePath(QStringLiteral("99. Track 99.wav")))
                == drive.audio.mid(98 * 2352, 2352));
}

TEST_F(GarbageToc, RandomTablesNeverHangOrCrash)
{
    QRandomGenerator random(5);
    for (int round = 0; round < 20; ++round) {
        const auto last = static_cast<quint8>(random.bounded(1, 6));
        QList<Entry> entries;
        for (int i = 0; i <= last; ++i)
            entries.append({static_cast<quint8>(random.bounded(16)),
                            static_cast<quint8>(random.bounded(4) == 0 ? 255 : 0),
                            static_cast<quint8>(random.bounded(5)),
                            static_cast<quint8>(random.bounded(256))});
        drive.tocBytes = table(1, last, entries);
        RunRecorder once;
        once.ripDisc(folder.filePath(QString::number(round)), 1);
        EXPECT_EQ(once.finishedCount, 1);
        qsizetype audioTracks = 0;
        for (const TrackInfo& track : std::as_const(once.disc.tracks))
            audioTracks += !track.isData;
        EXPECT_EQ(once.results.size(), audioTracks);
    }
}
