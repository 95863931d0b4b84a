#include "secure/ParanoiaReader.h"
#include "support/DiscMaker.h"
#include "support/SimulatedDrive.h"

#include <QTemporaryDir>
#include <QtEndian>

#include <gtest/gtest.h>

namespace {

QList<qint16> valuesOf(const QByteArray& audio)
{
    QList<qint16> values(audio.size() / 2);
    qFromLittleEndian<qint16>(audio.constData(), values.size(), values.data());
    return values;
}

class ImageTrackReading : public ::testing::Test {
protected:
    void SetUp() override
    {
        audio = makeAudio(50, 11);
        ImageDescription image;
        image.tracks = {{0, QStringLiteral("One")}, {20, QStringLiteral("Two")}};
        ASSERT_TRUE(drive.openCue(writeImage(folder.path(), image, audio)));
        disc = drive.readToc();
    }

    QList<qint16> truth(int first, int count) const
    {
        return valuesOf(audio.mid(qsizetype{first} * RAW_SECTOR_BYTES, qsizetype{count} * RAW_SECTOR_BYTES));
    }

    QTemporaryDir folder;
    QByteArray audio;
    CdDrive drive;
    DiscToc disc;
    ParanoiaReader reader;
};

} // namespace

TEST_F(ImageTrackReading, TracksAreBitExactAndEverySectorHasItsRecord)
{
    int calls = 0;
    reader.onSector = [&calls](const SectorResult& record) {
        EXPECT_EQ(record.lba, static_cast<quint32>(20 + calls));
        ++calls;
    };
    EXPECT_EQ(reader.readTrack(drive, disc.tracks[1]), truth(20, 30));
    EXPECT_EQ(calls, 30);
    ASSERT_EQ(reader.results.size(), 30);
    for (const SectorResult& record : reader.results) {
        EXPECT_TRUE(record.clean);
        EXPECT_FALSE(record.bad);
        EXPECT_EQ(record.retries, 0);
    }
}

TEST_F(ImageTrackReading, ProgressCountsSectorsFromOne)
{
    QList<QList<int>> seen;
    reader.onProgress = [&seen](int track, int place, int count) { seen.append({track, place, count}); };
    reader.readTrack(drive, disc.tracks[0]);
    ASSERT_EQ(seen.size(), 20);
    EXPECT_EQ(seen.constFirst(), (QList<int>{1, 1, 20}));
    EXPECT_EQ(seen.constLast(), (QList<int>{1, 20, 20}));
}

TEST_F(ImageTrackReading, OffsetCountsValuesAndFillsWithSilence)
{
    const QList<qint16> plain = truth(0, 20);
    drive.setReadOffset(6);
    const QList<qint16> ahead = reader.readTrack(drive, disc.tracks[0]);
    EXPECT_EQ(ahead.size(), plain.size());
    EXPECT_EQ(ahead.first(plain.size() - 6), plain.sliced(6));
    EXPECT_EQ(ahead.last(6), QList<qint16>(6, 0));
    drive.setReadOffset(-6);
    const QList<qint16> behind = reader.readTrack(drive, disc.tracks[0]);
    EXPECT_EQ(behind.first(6), QList<qint16>(6, 0));
    EXPECT_EQ(behind.sliced(6), plain.first(plain.size() - 6));
}

// What an encoder takes, so that the track need not be held twice.
TEST_F(ImageTrackReading, ATrackIsAlsoReadIntoTheUpperHalvesOf32Bits)
{
    for (const int offset : {0, 7, -7}) {
        drive.setReadOffset(offset);
        QList<int> expected;
        for (const qint16 value : reader.readTrack(drive, disc.tracks[1]))
            expected.append(value * 65536);
        QList<int> samples;
        reader.readTrack(drive, disc.tracks[1], samples);
        EXPECT_EQ(samples, expected) << offset;
        EXPECT_EQ(reader.results.size(), 30);
    }
}

TEST_F(ImageTrackReading, TheListOfATrackBeforeGivesItsMemoryAndNothingElse)
{
    QList<int> samples(31 * SECTOR_VALUES, 1);
    const int* memory = samples.constData();
    reader.readTrack(drive, disc.tracks[1], samples);
    EXPECT_EQ(samples.size(), 30 * SECTOR_VALUES);
    EXPECT_EQ(samples.constData(), memory);

    reader.onSector = [this](const SectorResult&) { reader.abortFlag = true; };
    reader.readTrack(drive, disc.tracks[0], samples);
    EXPECT_TRUE(samples.isEmpty());
    samples = {1, 2};
    TrackInfo nothing = disc.tracks[0];
    nothing.endLba = nothing.startLba - 1;
    reader.readTrack(drive, nothing, samples);
    EXPECT_TRUE(samples.isEmpty());
}

TEST_F(ImageTrackReading, UnreadableSectorIsBadAndSilent)
{
    TrackInfo track = disc.tracks[1];
    track.startLba = 48;
    track.endLba = 51;
    const QList<qint16> samples = reader.readTrack(drive, track);
    EXPECT_EQ(samples.first(2 * SECTOR_VALUES), truth(48, 2));
    EXPECT_EQ(samples.last(2 * SECTOR_VALUES), QList<qint16>(2 * SECTOR_VALUES, 0));
    EXPECT_TRUE(reader.results[3].bad);
    EXPECT_FALSE(reader.results[3].clean);
}

TEST_F(ImageTrackReading, TracksWithoutLengthGiveNothing)
{
    TrackInfo track = disc.tracks[0];
    for (const auto& [start, end] :
         {std::pair{0U, 0xFFFFFFFFU}, {20U, 19U}, {100U, 49U}, {0U, 0xFFFFFFF0U}}) {
        track.startLba = start;
        track.endLba = end;
        EXPECT_TRUE(reader.readTrack(drive, track).isEmpty()) << start << ' ' << end;
    }
}

// Given up at its first sector, so that the memory asked for is never touched.
TEST_F(ImageTrackReading, ATrackMayBeAsLongAsAWaveImageAndNoLonger)
{
    constexpr quint32 longest = 4'294'967'295U / 2352;       // 6.7 hours
    constexpr quint32 above2GiB = 2'147'483'648U / 2352 + 1; // 202.9 minutes
    for (const auto& [sectors, expectedCalls] : {std::pair{above2GiB, 1}, {longest, 1}, {longest + 1, 0}}) {
        int calls = 0;
        reader.onSector = [this, &calls](const SectorResult&) {
            ++calls;
            reader.abortFlag = true;
        };
        TrackInfo track = disc.tracks[0];
        track.endLba = track.startLba + sectors - 1;
        EXPECT_TRUE(reader.readTrack(drive, track).isEmpty());
        EXPECT_EQ(calls, expectedCalls) << sectors;
    }
}

TEST_F(ImageTrackReading, AbortEndsBeforeTheNextSectorAndIsClearedByTheNextRead)
{
    int calls = 0;
    reader.onSector = [this, &calls](const SectorResult&) { reader.abortFlag = ++calls == 3; };
    EXPECT_TRUE(reader.readTrack(drive, disc.tracks[0]).isEmpty());
    EXPECT_EQ(calls, 3);
    reader.onSector = nullptr;
    EXPECT_EQ(reader.readTrack(drive, disc.tracks[0]), truth(0, 20));
}

TEST_F(ImageTrackReading, ForcedVerificationReadsEachSectorTwiceAndAgrees)
{
    reader.forceVerify = true;
    EXPECT_EQ(reader.readTrack(drive, disc.tracks[0]), truth(0, 20));
    EXPECT_TRUE(reader.results[7].clean);
}

TEST(PhysicalTrackReading, TracksOfADriveAreVerified)
{
    SimulatedDrive platform;
    const DrivePlatformOverride override(platform);
    platform.audio = makeAudio(40, 4);
    CdDrive drive;
    ASSERT_TRUE(drive.open(platform.letter));
    ParanoiaReader reader;
    EXPECT_EQ(reader.readTrack(drive, drive.readToc().tracks[0]), valuesOf(platform.audio));
    EXPECT_TRUE(reader.results.constLast().clean);
}

namespace {

struct TrackOrigin {
    bool isAudioFile;
    const char* file;
    bool forced;
    bool direct; ///< read once
};

constexpr TrackOrigin origins[] = {
    {false, "", false, false},
    {false, "", true, false},
    {true, "", false, true},
    {true, "", true, false},
    {false, "/music/disc.bin", false, true},
    {false, "/music/disc.bin", true, false},
    {true, "/music/disc.wav", false, true},
    {true, "/music/disc.wav", true, false},
};

class ReadingPath : public ::testing::TestWithParam<TrackOrigin> {};

} // namespace

// Between drive and reader stands the batch: a second read of a sector comes
// out of it, and clears the count of the attempts that the first had taken.
TEST_P(ReadingPath, OnlyTracksOfAFileAreReadOnceAndThatUnlessForced)
{
    SimulatedDrive platform;
    const DrivePlatformOverride override(platform);
    platform.audio = makeAudio(27, 4);
    platform.failingReads = 2;
    CdDrive drive;
    ASSERT_TRUE(drive.open(platform.letter));
    TrackInfo track = drive.readToc().tracks[0];
    track.sourceIsAudioFile = GetParam().isAudioFile;
    track.sourceFile = QLatin1String(GetParam().file);
    ParanoiaReader reader;
    reader.forceVerify = GetParam().forced;
    QList<quint32> retries;
    reader.onSector = [&](const SectorResult&) { retries.append(drive.lastRetries()); };
    EXPECT_EQ(reader.readTrack(drive, track), valuesOf(platform.audio));
    ASSERT_EQ(retries.size(), 27);
    EXPECT_EQ(retries[0], GetParam().direct ? 2U : 0U);
    EXPECT_EQ(retries.last(26), QList<quint32>(26, 0));
    EXPECT_EQ(reader.results[0].retries, 0) << "attempts of the drive are no re-reads";
    EXPECT_TRUE(reader.results[0].clean);
}

INSTANTIATE_TEST_SUITE_P(Origins, ReadingPath, ::testing::ValuesIn(origins));
