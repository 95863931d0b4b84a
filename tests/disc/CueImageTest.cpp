#include "disc/CdDrive.h"
#include "support/DiscMaker.h"
#include "support/LogCapture.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class CueImage : public ::testing::Test {
protected:
    QString sheet(const QByteArray& text)
    {
        return writeFile(folder.path(), QStringLiteral("disc.cue"), text);
    }
    void bin(const QByteArray& bytes) { writeFile(folder.path(), QStringLiteral("disc.bin"), bytes); }

    QTemporaryDir folder;
    CdDrive drive;
};

constexpr char binLine[] = "FILE \"disc.bin\" BINARY\n";

QByteArray sectorOf(const QByteArray& audio, int sector)
{
    return audio.mid(qsizetype{sector} * RAW_SECTOR_BYTES, RAW_SECTOR_BYTES);
}

} // namespace

TEST_F(CueImage, EverySectorOfABinIsRead)
{
    const QByteArray audio = makeAudio(200, 5);
    ImageDescription image;
    image.tracks = {{0, QStringLiteral("One")}, {80, QString()}};
    ASSERT_TRUE(drive.openCue(writeImage(folder.path(), image, audio)));
    EXPECT_TRUE(drive.isImage());
    EXPECT_EQ(drive.name(), QStringLiteral("disc.cue"));
    const DiscToc disc = drive.readToc();
    ASSERT_EQ(disc.tracks.size(), 2);
    EXPECT_EQ(disc.tracks[0].endLba, 79U);
    EXPECT_EQ(disc.tracks[0].seconds, 1);
    EXPECT_EQ(disc.tracks[1].endLba, 199U) << "the last track ends with the file";
    EXPECT_EQ(disc.totalSectors, 200U);
    EXPECT_TRUE(disc.isImage);
    EXPECT_EQ(disc.albumYear, QStringLiteral("1998"));
    for (int sector = 0; sector < 200; ++sector)
        ASSERT_EQ(drive.readSector(static_cast<quint32>(sector)), sectorOf(audio, sector));
    EXPECT_EQ(drive.readSectorFresh(7), sectorOf(audio, 7));
    EXPECT_TRUE(drive.readSector(200).isEmpty());
}

TEST_F(CueImage, TrailingBytesOfAPartialSectorAreIgnored)
{
    bin(makeAudio(10, 1) + QByteArray(2351, 'x'));
    const DiscToc disc =
        CdDrive::parseCue(sheet(QByteArray(binLine) + "TRACK 01 AUDIO\nINDEX 01 00:00:00\n"));
    EXPECT_EQ(disc.tracks[0].endLba, 9U);
}

TEST_F(CueImage, WaveDataChunkIsFound)
{
    const QByteArray audio = makeAudio(3, 2);
    const QByteArray list = QByteArray("LIST\x04\x00\x00\x00", 8) + "INFO";
    writeFile(folder.path(), QStringLiteral("disc.wav"), wrapInWave(audio, list));
    ASSERT_TRUE(drive.openCue(sheet("FILE \"disc.wav\" WAVE\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n")));
    const DiscToc disc = drive.readToc();
    EXPECT_EQ(disc.imageDataOffset, 44U + 12U);
    EXPECT_TRUE(disc.tracks[0].sourceIsAudioFile);
    EXPECT_EQ(disc.tracks[0].endLba, 2U);
    EXPECT_EQ(drive.readSector(2), sectorOf(audio, 2));
}

TEST_F(CueImage, OddSizedChunkBeforeDataLosesTheWalk)
{
    const QByteArray odd = QByteArray("junk\x03\x00\x00\x00", 8) + QByteArray("abc\0", 4);
    writeFile(folder.path(), QStringLiteral("disc.wav"), wrapInWave(makeAudio(3, 2), odd));
    const DiscToc disc = CdDrive::parseCue(sheet("FILE \"disc.wav\" WAVE\nTRACK 01 AUDIO\n"));
    EXPECT_EQ(disc.imageDataOffset, 0U);
}

TEST_F(CueImage, BinaryThatHoldsTheWordWaveFallsBackToOffsetZero)
{
    writeFile(folder.path(), QStringLiteral("wave.bin"), makeAudio(3, 2));
    const DiscToc disc = CdDrive::parseCue(sheet("FILE \"wave.bin\" BINARY\nTRACK 01 AUDIO\n"));
    EXPECT_TRUE(disc.tracks[0].sourceIsAudioFile);
    EXPECT_EQ(disc.imageDataOffset, 0U);
    EXPECT_EQ(disc.tracks[0].endLba, 2U);
}

TEST_F(CueImage, TruncatedWaveHeadersGiveOffsetZero)
{
    const QByteArray whole = wrapInWave(makeAudio(1, 2));
    for (qsizetype length = 0; length < 44; ++length) {
        writeFile(folder.path(), QStringLiteral("disc.wav"), whole.left(length));
        const DiscToc disc = CdDrive::parseCue(sheet("FILE \"disc.wav\" WAVE\nTRACK 01 AUDIO\n"));
        ASSERT_EQ(disc.imageDataOffset, 0U) << length;
    }
}

TEST_F(CueImage, TrackWithoutIndexStartsAtZero)
{
    bin(makeAudio(4, 1));
    EXPECT_EQ(CdDrive::parseCue(sheet(QByteArray(binLine) + "TRACK 01 AUDIO\n")).tracks[0].startLba, 0U);
}

TEST_F(CueImage, EqualIndexesWrapTheEndAndGiveNoSeconds)
{
    bin(makeAudio(4, 1));
    const DiscToc disc = CdDrive::parseCue(sheet(
        QByteArray(binLine) + "TRACK 01 AUDIO\nINDEX 01 00:00:00\nTRACK 02 AUDIO\nINDEX 01 00:00:00\n"));
    EXPECT_EQ(disc.tracks[0].endLba, 0xFFFFFFFFU);
    EXPECT_EQ(disc.tracks[0].seconds, 0);
}

TEST_F(CueImage, LastTrackBehindTheFileIsAsLongAsTheFile)
{
    bin(makeAudio(10, 1));
    const DiscToc disc =
        CdDrive::parseCue(sheet(QByteArray(binLine) + "TRACK 01 AUDIO\nINDEX 01 00:01:00\n"));
    EXPECT_EQ(disc.tracks[0].startLba, 75U);
    EXPECT_EQ(disc.tracks[0].endLba, 84U);
}

TEST_F(CueImage, SeveralFilesReadFromTheFirst)
{
    const QByteArray first = makeAudio(20, 1);
    bin(first);
    writeFile(folder.path(), QStringLiteral("second.bin"), makeAudio(30, 2));
    ASSERT_TRUE(drive.openCue(sheet(QByteArray(binLine)
                                    + "TRACK 01 AUDIO\nINDEX 01 00:00:00\n"
                                      "FILE \"second.bin\" BINARY\nTRACK 02 AUDIO\nINDEX 01 00:00:10\n")));
    const DiscToc disc = drive.readToc();
    EXPECT_EQ(disc.tracks[0].endLba, 9U) << "whatever file the next index counts in";
    EXPECT_EQ(disc.tracks[1].endLba, 29U);
    EXPECT_EQ(drive.readSector(10), sectorOf(first, 10));
}

TEST_F(CueImage, FailuresLeaveTheDriveMarkedAsAnImageWithItsOldName)
{
    bin(makeAudio(4, 1));
    const QString good = sheet(QByteArray(binLine) + "TRACK 01 AUDIO\n");
    ASSERT_TRUE(drive.openCue(good));
    EXPECT_FALSE(drive.openCue(folder.filePath(QStringLiteral("missing.cue"))));
    EXPECT_TRUE(drive.isImage());
    EXPECT_EQ(drive.name(), QStringLiteral("disc.cue"));
    EXPECT_TRUE(drive.readSector(0).isEmpty());
    const QString noImage =
        writeFile(folder.path(), QStringLiteral("x.cue"), "FILE \"no.bin\" BINARY\nTRACK 01 AUDIO\n");
    EXPECT_FALSE(drive.openCue(noImage));
    EXPECT_TRUE(drive.isImage());
}

TEST_F(CueImage, WhatASheetSaysBesideThatIsNoError)
{
    bin(makeAudio(4, 1));
    const LogCapture log;
    EXPECT_TRUE(
        drive.openCue(sheet(QByteArray("NONSENSE\nINDEX 01 00:00:00\nCATALOG 1\n") + binLine
                            + "TRACK xx AUDIO\nINDEX 01 garbage\nFILE \"no.bin\" BINARY\nTRACK 02 AUDIO\n")));
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(CueImage, SheetsThatYieldNothing)
{
    EXPECT_TRUE(CdDrive::parseCue(sheet("")).tracks.isEmpty());
    EXPECT_TRUE(CdDrive::parseCue(sheet("REM nothing here\n")).tracks.isEmpty());
    EXPECT_TRUE(CdDrive::parseCue(sheet(makeAudio(40, 9))).tracks.isEmpty());
    EXPECT_TRUE(CdDrive::parseCue(folder.path()).tracks.isEmpty()) << "a folder";
    EXPECT_TRUE(CdDrive::parseCue(folder.filePath(QStringLiteral("missing.cue"))).isImage);
}

TEST_F(CueImage, AnEndlessSheetEnds)
{
    QFile huge(sheet(QByteArray(binLine) + "TRACK 01 AUDIO\n"));
    ASSERT_TRUE(huge.resize(qint64{1} << 33));
    EXPECT_TRUE(CdDrive::parseCue(huge.fileName()).tracks.isEmpty());
}

TEST_F(CueImage, TenThousandTracksAreAllThere)
{
    bin(makeAudio(4, 1));
    QByteArray text = binLine;
    for (int i = 1; i <= 10000; ++i)
        text += "TRACK " + QByteArray::number(i) + " AUDIO\nINDEX 01 " + cueTime(i).toLatin1() + "\n";
    const DiscToc disc = CdDrive::parseCue(sheet(text));
    ASSERT_EQ(disc.tracks.size(), 10000);
    EXPECT_EQ(disc.tracks[9999].number, 10000);
}

TEST_F(CueImage, ReadsLeaveTheDriveFiguresAlone)
{
    bin(makeAudio(4, 1));
    ASSERT_TRUE(drive.openCue(sheet(QByteArray(binLine) + "TRACK 01 AUDIO\n")));
    drive.readSector(0);
    drive.readSector(9);
    EXPECT_EQ(drive.lastRetries(), 0U);
    EXPECT_EQ(drive.lastC2Errors(), 0U);
    EXPECT_EQ(drive.speedKBs(), 0U);
    EXPECT_FALSE(drive.probeC2(0));
    EXPECT_FALSE(drive.isUsb());
    EXPECT_EQ(drive.queryModel(), QString());
}
