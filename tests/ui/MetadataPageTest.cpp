#include "ui/WindowDriver.h"

#include "support/DiscMaker.h"
#include "support/Tool.h"

#include <QComboBox>
#include <QHeaderView>
#include <QImage>
#include <QSettings>
#include <QSpinBox>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class MetadataPage : public ::testing::Test {
protected:
    void SetUp() override { QSettings().clear(); }
    QTemporaryDir folder;
};

QString header(QTableWidget* table, int column)
{
    return table->horizontalHeaderItem(column)->text();
}

} // namespace

TEST_F(MetadataPage, TextsAndSizesInEnglish)
{
    WindowDriver app(2);
    EXPECT_EQ(app.onPage<QLabel>(2, "stepHeading")->text(),
              QStringLiteral("Check and edit the album information"));
    EXPECT_EQ(app.onPage<QPushButton>(2, "browseBtn")->text(), QStringLiteral("Select Art"));
    const QStringList labels{"Album", "Artist", "Year", "DISC", " /  "};
    for (int i = 0; i < labels.size(); ++i)
        EXPECT_EQ(app.onPage<QLabel>(2, "formLabel", i)->text(), labels[i]);
    EXPECT_EQ(app.onPage<QLabel>(2, "sectionLabel")->text(), QStringLiteral("Track List"));
    auto* art = app.onPage<QLabel>(2, "artLabel");
    EXPECT_EQ(art->text(), QStringLiteral("♪"));
    EXPECT_EQ(art->size(), QSize(140, 140));
    auto* table = app.tracks();
    EXPECT_EQ(header(table, 0), QStringLiteral("#"));
    EXPECT_EQ(header(table, 1), QStringLiteral("Title"));
    EXPECT_EQ(header(table, 2), QStringLiteral("Time"));
    EXPECT_EQ(table->columnWidth(0), 40);
    EXPECT_EQ(table->columnWidth(2), 70);
    EXPECT_EQ(table->height(), 180);
    EXPECT_TRUE(table->verticalHeader()->isHidden());
    for (const int place : {0, 1}) {
        auto* spin = app.onPage<QSpinBox>(2, "formEdit", place);
        EXPECT_EQ(spin->minimum(), 1);
        EXPECT_EQ(spin->maximum(), 99);
        EXPECT_EQ(spin->value(), 1);
        EXPECT_EQ(spin->width(), 60);
    }
}

TEST_F(MetadataPage, TextsInJapanese)
{
    WindowDriver app(1);
    EXPECT_EQ(app.onPage<QLabel>(2, "stepHeading")->text(),
              QStringLiteral("アルバム情報を確認・編集してください"));
    EXPECT_EQ(app.onPage<QPushButton>(2, "browseBtn")->text(), QStringLiteral("アートを選択"));
    const QStringList labels{"アルバム", "アーティスト", "年", "DISC", " /  "};
    for (int i = 0; i < labels.size(); ++i)
        EXPECT_EQ(app.onPage<QLabel>(2, "formLabel", i)->text(), labels[i]);
    EXPECT_EQ(app.onPage<QLabel>(2, "sectionLabel")->text(), QStringLiteral("トラックリスト"));
    EXPECT_EQ(header(app.tracks(), 1), QStringLiteral("曲名"));
    EXPECT_EQ(header(app.tracks(), 2), QStringLiteral("時間"));
}

TEST_F(MetadataPage, ADiscFillsTheTableAnewOnEveryEntry)
{
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    app.shelf().audio = makeAudio(5000, 1);
    app.shelf().tracks = {{0, false}, {4650, true}};
    app.advanceTo(2);
    ASSERT_EQ(app.tracks()->rowCount(), 2);
    EXPECT_EQ(app.cell(app.tracks(), 0, 0), QStringLiteral("01"));
    EXPECT_EQ(app.cell(app.tracks(), 0, 1), QStringLiteral("Track 1"));
    EXPECT_EQ(app.cell(app.tracks(), 0, 2), QStringLiteral("1:02")); // 4650 sectors
    EXPECT_EQ(app.cell(app.tracks(), 1, 1), QStringLiteral("(data track - not audio, will not be ripped)"));
    EXPECT_EQ(app.tracks()->rowHeight(1), 26);

    app.tracks()->item(0, 1)->setText(QStringLiteral("Mine"));
    WindowDriver::click(app.back());
    app.advanceTo(2);
    EXPECT_EQ(app.cell(app.tracks(), 0, 1), QStringLiteral("Track 1"));
}

TEST_F(MetadataPage, TheDataTrackNoteInJapanese)
{
    WindowDriver app(1, {QStringLiteral("/dev/sr0")});
    app.shelf().audio = makeAudio(400, 1);
    app.shelf().tracks = {{0, false}, {200, true}};
    app.advanceTo(2);
    EXPECT_EQ(app.cell(app.tracks(), 1, 1),
              QStringLiteral("（データトラック・音声ではないため取り込みません）"));
}

TEST_F(MetadataPage, ADriveThatIsGoneLeavesThePageEmptyAndNextEnabled)
{
    WindowDriver app(2, {QStringLiteral("/dev/sr7")});
    app.advanceTo(2);
    EXPECT_EQ(app.step(), 2);
    EXPECT_EQ(app.tracks()->rowCount(), 0);
    EXPECT_TRUE(app.next()->isEnabled());
}

TEST_F(MetadataPage, AnAudioFileIsOneTrackWithoutLookupOrTags)
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

TEST_F(MetadataPage, AudioFilePlaceholdersInJapanese)
{
    WindowDriver app(1);
    app.audioPath()->setText(QStringLiteral("/music/a.wav"));
    app.advanceTo(2);
    EXPECT_EQ(app.album()->placeholderText(), QStringLiteral("アルバム名を入力"));
    EXPECT_EQ(app.artist()->placeholderText(), QStringLiteral("アーティスト名を入力"));
}

TEST_F(MetadataPage, TheAudioFileWinsOverSheetAndDrive)
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

TEST_F(MetadataPage, TheSheetWinsOverTheDrive)
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

TEST_F(MetadataPage, ACoverIsShownInItsBoxAndAnUnreadableOneIgnored)
{
    WindowDriver app(2);
    QImage picture(400, 200, QImage::Format_RGB32);
    picture.fill(Qt::red);
    const QString path = folder.filePath(QStringLiteral("cover.png"));
    ASSERT_TRUE(picture.save(path));
    app.advanceTo(2);
    app.pickCover(path);
    auto* art = app.onPage<QLabel>(2, "artLabel");
    EXPECT_EQ(art->pixmap().size(), QSize(140, 70));

    app.pickCover(writeFile(folder.path(), QStringLiteral("bad.png"), "no picture"));
    EXPECT_EQ(art->pixmap().size(), QSize(140, 70));
    app.pickCover(QString());
    EXPECT_EQ(art->pixmap().size(), QSize(140, 70));
}
