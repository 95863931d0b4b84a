// What the window shows on the Metadata step of each kind of source.

#include "ui/WindowDriver.h"

#include "support/DiscMaker.h"
#include "support/Tool.h"

#include <QComboBox>
#include <QSettings>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class MetadataRoad : public ::testing::Test {
protected:
    void SetUp() override { QSettings().clear(); }
    QTemporaryDir folder;
};

} // namespace

TEST_F(MetadataRoad, ADiscFillsTheTableAnewOnEveryEntry)
{
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    app.shelf().audio = makeAudio(5000, 1);
    app.shelf().tracks = {{0, false}, {4650, true}};
    app.advanceTo(2);
    ASSERT_EQ(app.tracks()->rowCount(), 2);
    EXPECT_EQ(app.cell(app.tracks(), 0, 1), QStringLiteral("Track 1"));

    app.tracks()->item(0, 1)->setText(QStringLiteral("Mine"));
    WindowDriver::click(app.back());
    app.advanceTo(2);
    EXPECT_EQ(app.cell(app.tracks(), 0, 1), QStringLiteral("Track 1"));
}

TEST_F(MetadataRoad, ADriveThatIsGoneLeavesThePageEmptyAndNextEnabled)
{
    WindowDriver app(2, {QStringLiteral("/dev/sr7")});
    app.advanceTo(2);
    EXPECT_EQ(app.step(), 2);
    EXPECT_EQ(app.tracks()->rowCount(), 0);
    EXPECT_TRUE(app.next()->isEnabled());
}

TEST_F(MetadataRoad, AnAudioFileIsOneTrackWithoutLookupOrTags)
{
    const QString wave = writeFile(folder.path(), QStringLiteral("made.wav"), wrapInWave(makeAudio(10, 1)));
    const QString song = folder.filePath(QStringLiteral("My.Song.final.flac"));
    QStringList arguments{QStringLiteral("--silent"), QStringLiteral("-o"), song};
    for (const char* tag : {"TITLE=Tagged", "ARTIST=Tagged", "ALBUM=Tagged", "DATE=1999", "TRACKNUMBER=7"})
        arguments << QStringLiteral("-T") << QLatin1String(tag);
    ASSERT_TRUE(runTool(QStringLiteral("flac"), arguments << wave).ok());
    WindowDriver app(2);
    app.pickAudio(song);
    app.advanceTo(2);
    ASSERT_EQ(app.tracks()->rowCount(), 1);
    EXPECT_EQ(app.cell(app.tracks(), 0, 0), QStringLiteral("01"));
    EXPECT_EQ(app.cell(app.tracks(), 0, 1), QStringLiteral("My.Song.final"));
    EXPECT_EQ(app.cell(app.tracks(), 0, 2), QStringLiteral("—"));
    EXPECT_EQ(app.album()->placeholderText(), QStringLiteral("Enter album name"));
    EXPECT_EQ(app.artist()->placeholderText(), QStringLiteral("Enter artist name"));
    for (QLineEdit* field : {app.album(), app.artist(), app.year()})
        EXPECT_EQ(field->text(), QString()) << "the tags of the file are not read";
    EXPECT_TRUE(app.next()->isEnabled());
}

TEST_F(MetadataRoad, TheAudioFileWinsOverSheetAndDrive)
{
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    app.shelf().audio = makeAudio(400, 1);
    app.audioPath()->setText(QStringLiteral("/music/a.wav"));
    ImageDescription image;
    image.tracks = {{0, QStringLiteral("Alpha")}};
    app.pickCue(writeImage(folder.path(), image, makeAudio(100, 1)));
    app.advanceTo(2);
    EXPECT_EQ(app.cell(app.tracks(), 0, 1), QStringLiteral("a"));
    EXPECT_TRUE(app.shelf().commands.isEmpty());
}

TEST_F(MetadataRoad, TheSheetWinsOverTheDrive)
{
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    app.shelf().audio = makeAudio(400, 1);
    ImageDescription image;
    image.tracks = {{0, QStringLiteral("Alpha")}};
    app.pickCue(writeImage(folder.path(), image, makeAudio(100, 1)));
    app.onPage<QComboBox>(0, "driveCombo")->setCurrentIndex(0);
    app.advanceTo(2);
    EXPECT_EQ(app.cell(app.tracks(), 0, 1), QStringLiteral("Alpha"));
    EXPECT_TRUE(app.shelf().commands.isEmpty());
}
