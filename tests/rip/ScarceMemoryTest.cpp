// Tracks that memory does not hold are failed tracks, and the run goes on.

#include "base/PhysicalMemory.h"

#include "RunRecorder.h"
#include "ScriptedDrive.h"

#include <QDir>

#include <gtest/gtest.h>

#include <new>

namespace {

constexpr quint64 bytesOfSector = 1176 * 4;               // its values in 32 bits
constexpr quint64 bytesOfComparedSector = 1176 * (4 + 2); // and as a first pass read them

quint64 bytesOfDiscSector(bool c2)
{
    return c2 ? bytesOfSector : bytesOfComparedSector;
}

/// The machine has this memory for as long as it lives; three quarters of it are
/// for a track.
class PretendedMemory {
public:
    explicit PretendedMemory(quint64 bytesForTrack) { pretendPhysicalMemory((bytesForTrack + 2) / 3 * 4); }
    ~PretendedMemory() { pretendPhysicalMemory(0); }
    PretendedMemory(const PretendedMemory&) = delete;
    PretendedMemory& operator=(const PretendedMemory&) = delete;
};

class ScarceMemory : public ::testing::Test {
protected:
    QString out() const { return folder.filePath(QStringLiteral("out")); }

    /// Tracks of 30, 60 and 40 sectors.
    QString image()
    {
        ImageDescription description;
        description.tracks = {{0, QStringLiteral("One")}, {30, QStringLiteral("Two")}, {90, QString()}};
        return writeImage(folder.path(), description, makeAudio(130, 2));
    }

    void loadDisc()
    {
        disc.audio = makeAudio(130, 2);
        disc.tracks = {{0}, {30}, {90}};
    }

    void ripDiscInMemoryOf(quint64 sectors, bool c2, RunRecorder& recorder)
    {
        loadDisc();
        disc.c2Available = c2;
        const PretendedMemory memory(sectors * bytesOfDiscSector(c2));
        recorder.ripDisc(out() + QString::number(c2));
    }

    /// The second of three tracks failed and left no file.
    void expectTheSecondFailed(const QString& secondName) const
    {
        ASSERT_EQ(run.results.size(), 3);
        EXPECT_TRUE(run.results[0].ok);
        EXPECT_FALSE(run.results[1].ok);
        EXPECT_EQ(run.results[1].trackNumber, 2);
        EXPECT_EQ(run.results[1].title, secondName);
        EXPECT_EQ(run.results[1].errorSectors, 0xFFFFFFFFU);
        EXPECT_TRUE(run.results[2].ok);
        EXPECT_EQ(run.finishedCount, 1);
        EXPECT_FALSE(run.drive.isBorrowed());
        EXPECT_EQ(QDir(out()).entryList(QDir::Files).size(), 2);
        EXPECT_EQ(run.worker.unfinishedFile(), QString());
    }

    QTemporaryDir folder;
    ScriptedDrive disc{0};
    DrivePlatformOverride platform{disc};
    RunRecorder run;
};

} // namespace

TEST_F(ScarceMemory, AnImageTrackBeyondItFailsBeforeItIsRead)
{
    const PretendedMemory memory(59 * bytesOfSector);
    run.rip(image(), OutputWav, out());
    expectTheSecondFailed(QStringLiteral("Two"));
    EXPECT_EQ(run.sectors.size(), 30 + 40);
    EXPECT_EQ(run.started.value(2), QStringLiteral("2/3 Two"));
}

TEST_F(ScarceMemory, AnImageTrackThatJustFitsIsWhole)
{
    const PretendedMemory memory(60 * bytesOfSector);
    run.rip(image(), OutputWav, out());
    ASSERT_EQ(run.results.size(), 3);
    EXPECT_TRUE(run.results[1].ok);
}

TEST_F(ScarceMemory, ADiscTrackBeyondItFailsBeforeItIsRead)
{
    for (const bool c2 : {true, false}) {
        RunRecorder once;
        ripDiscInMemoryOf(59, c2, once);
        ASSERT_EQ(once.results.size(), 3);
        EXPECT_TRUE(once.results[0].ok);
        EXPECT_FALSE(once.results[1].ok);
        EXPECT_EQ(once.results[1].errorSectors, 0xFFFFFFFFU);
        EXPECT_TRUE(once.results[2].ok);
        EXPECT_EQ(once.sectors.size(), 30 + 40);
    }
}

TEST_F(ScarceMemory, ADiscTrackThatJustFitsIsWhole)
{
    for (const bool c2 : {true, false}) {
        RunRecorder once;
        ripDiscInMemoryOf(60, c2, once);
        ASSERT_EQ(once.results.size(), 3);
        EXPECT_TRUE(once.results[1].ok) << c2;
    }
}

TEST_F(ScarceMemory, WantOfItWithinAnImageTrackFailsThatTrackAlone)
{
    QObject::connect(&run.worker, &RipWorker::sectorDone, [](const SectorResult& sector) {
        if (sector.lba == 50)
            throw std::bad_alloc();
    });
    run.rip(image(), OutputWav, out());
    expectTheSecondFailed(QStringLiteral("Two"));
}

TEST_F(ScarceMemory, WantOfItWithinADiscTrackFailsThatTrackAlone)
{
    loadDisc();
    QObject::connect(&run.worker, &RipWorker::sectorDone, [](const SectorResult& sector) {
        if (sector.lba == 50)
            throw std::bad_alloc();
    });
    run.ripDisc(out());
    expectTheSecondFailed(QStringLiteral("Track 2"));
}

// The words of a cover left out are said when the audio is written, with the
// file still in work.
TEST_F(ScarceMemory, WantOfItWithAFileInWorkLeavesNoFile)
{
    QPixmap cover(65'600, 1);
    cover.fill(Qt::green);
    QObject::connect(&run.worker, &RipWorker::logLine, [](const QString& line) {
        if (line.endsWith(QStringLiteral("02. Two.wav")))
            throw std::bad_alloc();
    });
    run.rip(image(), OutputWav, out(), cover);
    QFile::remove(out() + QStringLiteral("/cover.jpg"));
    expectTheSecondFailed(QStringLiteral("Two"));
}
