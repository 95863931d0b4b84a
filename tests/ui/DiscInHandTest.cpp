#include "ui/PageStage.h"

#include "support/DiscMaker.h"
#include "support/LoadingDrive.h"

#include <QSettings>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class DiscInHandTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        QSettings().clear();
        stage.shelf.audio = makeAudio(400, 1);
        stage.shelf.tracks = {{0}, {160}, {300, true}};
    }

    static void put(const char* key, const QVariant& value)
    {
        QSettings().setValue(QLatin1String(key), value);
    }

    QString makeSheet()
    {
        ImageDescription image;
        image.tracks = {{0, QStringLiteral("Alpha")}, {160, QString()}};
        return writeImage(folder.path(), image, makeAudio(400, 1));
    }

    bool openDrive() { return disc.openDrive(QStringLiteral("/dev/sr0")); }

    QTemporaryDir folder;
    PageStage stage{2, oneDrive};
    DiscInHand& disc = stage.disc;
};

} // namespace

TEST_F(DiscInHandTest, ADriveIsOpenedAndItsDiscRead)
{
    ASSERT_TRUE(openDrive());
    EXPECT_EQ(disc.driveModel, QStringLiteral("ACME - DISC READER 9"));
    EXPECT_TRUE(disc.toc.tracks.isEmpty());
    ASSERT_TRUE(disc.readDisc());
    ASSERT_EQ(disc.toc.tracks.size(), 3);
    EXPECT_FALSE(disc.isAudioFile());
    EXPECT_EQ(disc.audioSectors(), 300) << "without the data track";
}

TEST_F(DiscInHandTest, ADriveThatCannotBeOpenedChangesNothing)
{
    ASSERT_TRUE(openDrive());
    ASSERT_TRUE(disc.readDisc());
    EXPECT_FALSE(disc.openDrive(QStringLiteral("/dev/sr7")));
    EXPECT_EQ(disc.driveModel, QStringLiteral("ACME - DISC READER 9"));
    EXPECT_EQ(disc.toc.tracks.size(), 3);
}

TEST_F(DiscInHandTest, ADriveWithoutADiscLeavesTheOneThatWasThere)
{
    LoadingDrive loading(stage.shelf);
    const DrivePlatformOverride inPlace(loading);
    ASSERT_TRUE(openDrive());
    ASSERT_TRUE(disc.readDisc());
    loading.failure = DriveFailure::notReady;
    loading.load(60);
    ASSERT_TRUE(openDrive());
    EXPECT_FALSE(disc.readDisc());
    EXPECT_EQ(disc.drive.tocFailure(), DriveFailure::notReady);
    EXPECT_EQ(disc.toc.tracks.size(), 3);
}

TEST_F(DiscInHandTest, ASheetIsOpenedWithItsDisc)
{
    ASSERT_TRUE(disc.openSheet(makeSheet()));
    EXPECT_TRUE(disc.drive.isImage());
    ASSERT_EQ(disc.toc.tracks.size(), 2);
    EXPECT_EQ(disc.toc.tracks.first().title, QStringLiteral("Alpha"));
    EXPECT_EQ(disc.toc.albumTitle, QStringLiteral("Test Album"));
    EXPECT_EQ(disc.audioSectors(), 400);

    EXPECT_FALSE(disc.openSheet(writeFile(folder.path(), QStringLiteral("broken.cue"), "nothing here")));
    EXPECT_EQ(disc.toc.tracks.size(), 2) << "the disc that was there";
}

TEST_F(DiscInHandTest, AnAudioFileIsADiscOfOneTrackOfItsName)
{
    disc.takeAudioFile(QStringLiteral("/music/My.Song.final.flac"));
    ASSERT_EQ(disc.toc.tracks.size(), 1);
    EXPECT_EQ(disc.toc.tracks.first().number, 1);
    EXPECT_EQ(disc.toc.tracks.first().title, QStringLiteral("My.Song.final"));
    EXPECT_TRUE(disc.isAudioFile());
    EXPECT_TRUE(disc.toc.albumTitle.isEmpty());
}

TEST_F(DiscInHandTest, ClearedItHasNoDiscAndNoOpenDrive)
{
    ASSERT_TRUE(disc.openSheet(makeSheet()));
    disc.driveModel = QStringLiteral("Acme - Reader");
    disc.offsetSource = QStringLiteral("(saved)");
    disc.clear();
    EXPECT_TRUE(disc.toc.tracks.isEmpty());
    EXPECT_EQ(disc.audioSectors(), 0);
    EXPECT_TRUE(disc.drive.readSector(0).isEmpty());
    EXPECT_EQ(disc.driveModel, QStringLiteral("Acme - Reader")) << "the Settings dialog still names it";
    EXPECT_EQ(disc.offsetSource, QStringLiteral("(saved)"));
}

TEST_F(DiscInHandTest, ADiscIsBeingRippedWhileItsDriveIsBorrowed)
{
    EXPECT_FALSE(disc.isBeingRipped());
    ASSERT_TRUE(openDrive());
    ASSERT_TRUE(disc.readDisc());
    EXPECT_FALSE(disc.isBeingRipped());
    ASSERT_TRUE(disc.drive.borrow());
    EXPECT_TRUE(disc.isBeingRipped());
    disc.takeAudioFile(QStringLiteral("/music/a.wav"));
    EXPECT_FALSE(disc.isBeingRipped()) << "the track in hand is the file's";
    disc.clear();
    EXPECT_FALSE(disc.isBeingRipped());
    disc.drive.giveBack();
}

TEST_F(DiscInHandTest, TheOffsetOfADriveComesFromItsOwnGroup)
{
    stage.shelf.vendor = "AC/ME";
    stage.shelf.product = "X\\9";
    put("driveOffsets/AC_ME - X_9/offset", -30);
    put("driveOffsets/AC_ME - X_9/source", QStringLiteral("set in Settings"));
    ASSERT_TRUE(openDrive());
    EXPECT_EQ(disc.driveModel, QStringLiteral("AC/ME - X\\9"));
    EXPECT_EQ(stage.settings.sampleOffset, -30);
    EXPECT_EQ(disc.offsetSource, QStringLiteral("(set in Settings)"));
}

TEST_F(DiscInHandTest, AnOffsetOfADriveWithoutItsSourceIsASavedOne)
{
    put("driveOffsets/ACME - DISC READER 9/offset", 1);
    ASSERT_TRUE(openDrive());
    EXPECT_EQ(stage.settings.sampleOffset, 1);
    EXPECT_EQ(disc.offsetSource, QStringLiteral("(saved)"));
}

TEST_F(DiscInHandTest, ADriveWithoutAnEntryKeepsTheOffsetInForce)
{
    stage.settings.sampleOffset = 6;
    ASSERT_TRUE(openDrive());
    EXPECT_EQ(stage.settings.sampleOffset, 6);
    EXPECT_EQ(disc.offsetSource, QStringLiteral("(Settings value)"));
}

TEST_F(DiscInHandTest, ADriveWithoutAnEntryKeepsTheOffsetOfTheDriveBeforeIt)
{
    put("driveOffsets/ACME - DISC READER 9/offset", 6);
    ASSERT_TRUE(openDrive());
    stage.shelf.product = "STRANGER        ";
    ASSERT_TRUE(openDrive());
    EXPECT_EQ(disc.driveModel, QStringLiteral("ACME - STRANGER"));
    EXPECT_EQ(stage.settings.sampleOffset, 6);
    EXPECT_EQ(disc.offsetSource, QStringLiteral("(Settings value)"));
}

TEST_F(DiscInHandTest, ADriveOfUnknownModelSaysSo)
{
    stage.shelf.vendor.clear();
    stage.shelf.product.clear();
    stage.settings.sampleOffset = 12;
    ASSERT_TRUE(openDrive());
    EXPECT_EQ(disc.driveModel, QString());
    EXPECT_EQ(stage.settings.sampleOffset, 12);
    EXPECT_EQ(disc.offsetSource, QStringLiteral("(drive model unknown - Settings value)"));
}

TEST_F(DiscInHandTest, AnOffsetStoredAsItsOwnIsFoundAgain)
{
    ASSERT_TRUE(openDrive());
    disc.storeOwnOffset(667);
    EXPECT_EQ(disc.offsetSource, QStringLiteral("(set in Settings)"));
    const QString group = QStringLiteral("driveOffsets/ACME - DISC READER 9");
    EXPECT_EQ(QSettings().value(group + QStringLiteral("/offset")).toInt(), 667);
    EXPECT_EQ(QSettings().value(group + QStringLiteral("/source")).toString(),
              QStringLiteral("set in Settings"));

    RipSettings later;
    DiscInHand again(later);
    ASSERT_TRUE(again.openDrive(QStringLiteral("/dev/sr0")));
    EXPECT_EQ(later.sampleOffset, 667);
    EXPECT_EQ(again.offsetSource, QStringLiteral("(set in Settings)"));
}
