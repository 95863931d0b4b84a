// A CUE image without CdDrive around it.

#include "disc/ImageSource.h"
#include "support/DiscMaker.h"
#include "support/LogCapture.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

constexpr char binLine[] = "FILE \"disc.bin\" BINARY\n";

class ImageSourceTest : public ::testing::Test {
protected:
    QString sheet(const QByteArray& text)
    {
        return writeFile(folder.path(), QStringLiteral("disc.cue"), text);
    }
    void bin(const QByteArray& bytes) { writeFile(folder.path(), QStringLiteral("disc.bin"), bytes); }

    static QByteArray read(ImageSource& image, quint32 lba)
    {
        return image.readSector(lba, ReadPurpose::judged);
    }

    QTemporaryDir folder;
};

} // namespace

// In order, and against the pieces in which the file is read.
TEST_F(ImageSourceTest, SectorsComeInAnyOrder)
{
    const QByteArray audio = makeAudio(100, 3);
    bin(audio);
    ImageSource image(sheet(QByteArray(binLine) + "TRACK 01 AUDIO\n"));
    ASSERT_TRUE(image.isOpen());
    for (const quint32 lba : {0U, 1U, 31U, 32U, 99U, 98U, 0U, 64U, 50U}) {
        const QByteArray truth = audio.mid(qsizetype{lba} * RAW_SECTOR_BYTES, RAW_SECTOR_BYTES);
        EXPECT_EQ(read(image, lba), truth) << lba;
        EXPECT_EQ(image.readSectorFresh(lba), truth) << lba;
    }
    EXPECT_TRUE(read(image, 100).isEmpty());
    EXPECT_TRUE(read(image, 0xFFFFFFFF).isEmpty());
}

TEST_F(ImageSourceTest, ASectorThatIsKeptOutlivesTheNextRead)
{
    const QByteArray audio = makeAudio(3, 3);
    bin(audio);
    ImageSource image(sheet(QByteArray(binLine) + "TRACK 01 AUDIO\n"));
    const QList<QByteArray> kept{read(image, 0), read(image, 1), read(image, 2)};
    EXPECT_EQ(kept.join(), audio);
}

TEST_F(ImageSourceTest, AHeaderLiesInFrontOfTheFirstSector)
{
    const QByteArray audio = makeAudio(3, 2);
    writeFile(folder.path(), QStringLiteral("disc.wav"), wrapInWave(audio));
    ImageSource image(sheet("FILE \"disc.wav\" WAVE\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n"));
    EXPECT_EQ(read(image, 0), audio.first(RAW_SECTOR_BYTES));
    EXPECT_EQ(read(image, 2), audio.last(RAW_SECTOR_BYTES));
}

TEST_F(ImageSourceTest, HasNothingOfADrive)
{
    bin(makeAudio(4, 1));
    ImageSource image(sheet(QByteArray(binLine) + "TRACK 01 AUDIO\n"));
    image.setC2Enabled(true);
    EXPECT_FALSE(image.c2Enabled());
    EXPECT_FALSE(image.probeC2(0));
    EXPECT_FALSE(image.isUsb());
    EXPECT_TRUE(image.queryModel().isEmpty());
    EXPECT_EQ(image.figures(), nullptr);
    DriveFailure failure = DriveFailure::becomingReady;
    EXPECT_EQ(image.readToc(failure).tracks.size(), 1);
    EXPECT_EQ(failure, DriveFailure::becomingReady) << "that is another's word";
}

TEST_F(ImageSourceTest, ASheetThatYieldsNothingIsNamedInTheLog)
{
    for (const QString& path :
         {sheet("REM nothing here\n"), folder.filePath(QStringLiteral("no such.cue"))}) {
        const LogCapture log;
        EXPECT_FALSE(ImageSource(path).isOpen());
        EXPECT_EQ(log.lines(), QStringList{QStringLiteral("CdDrive: cue parse failed: ") + path});
        EXPECT_EQ(log.warnings(), log.lines());
    }
}

TEST_F(ImageSourceTest, AFileThatCannotBeOpenedIsNamedInTheLog)
{
    const QString cue = sheet("FILE \"no such.bin\" BINARY\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n");
    const LogCapture log;
    EXPECT_FALSE(ImageSource(cue).isOpen());
    EXPECT_EQ(log.lines(), QStringList{QStringLiteral("CdDrive: cannot open bin: ")
                                       + folder.filePath(QStringLiteral("no such.bin"))});
    EXPECT_EQ(log.warnings(), log.lines());
}

TEST_F(ImageSourceTest, AFileThatShrinksMidwayGivesFailedSectors)
{
    bin(makeAudio(400, 1));
    ImageSource image(sheet(QByteArray(binLine) + "TRACK 01 AUDIO\n"));
    EXPECT_FALSE(read(image, 0).isEmpty());
    ASSERT_TRUE(QFile::resize(folder.filePath(QStringLiteral("disc.bin")), 100 * RAW_SECTOR_BYTES));
    EXPECT_FALSE(read(image, 99).isEmpty());
    EXPECT_TRUE(read(image, 300).isEmpty());
}
