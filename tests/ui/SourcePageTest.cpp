// The Source page by itself. What the window makes of a choice: SourceRoadTest.

#include "ui/SourcePage.h"

#include "support/DialogWatcher.h"
#include "support/DiscMaker.h"
#include "ui/PageStage.h"

#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

/// The page with nothing around it.
struct Stage : PageStage {
    explicit Stage(int language = 2, const QStringList& letters = {}) : PageStage(language, letters)
    {
        page.show();
    }

    QComboBox* combo() { return on<QComboBox>(page, "driveCombo"); }
    QLineEdit* cuePath() { return on<QLineEdit>(page, "pathEdit", 0); }
    QLineEdit* audioPath() { return on<QLineEdit>(page, "pathEdit", 1); }
    QPushButton* button(int place) { return on<QPushButton>(page, "browseBtn", place); }
    void pickCue(const QString& path) { pickPath(button(1), path); }
    void pickAudio(const QString& path) { pickPath(button(2), path); }

    SourcePage page{disc};
    QSignalSpy sheets{&page, &SourcePage::sheetRead};
};

class SourcePageTest : public ::testing::Test {
protected:
    void SetUp() override { QSettings().clear(); }

    QString makeCue()
    {
        ImageDescription image;
        image.tracks = {{0, QStringLiteral("Alpha")}, {160, QString()}};
        return writeImage(folder.path(), image, makeAudio(400, 1));
    }

    QTemporaryDir folder;
};

QStringList groupTitles(const QWidget& page)
{
    QStringList titles;
    for (const QGroupBox* group : page.findChildren<QGroupBox*>(QStringLiteral("sourceGroup")))
        titles << group->title();
    return titles;
}

} // namespace

TEST_F(SourcePageTest, TextsInEnglish)
{
    Stage stage(2);
    EXPECT_EQ(on<QLabel>(stage.page, "stepHeading")->text(), QStringLiteral("Select a source"));
    EXPECT_EQ(groupTitles(stage.page), (QStringList{"CD Drive", "CUE/BIN File  ( CD drive not required )",
                                                    "Audio File  ( CD drive not required )", "Read Mode"}));
    EXPECT_EQ(stage.cuePath()->placeholderText(), QStringLiteral("Select .cue file..."));
    EXPECT_EQ(stage.audioPath()->placeholderText(), QStringLiteral("Select audio file..."));
    EXPECT_EQ(on<QLabel>(stage.page, "previewLabel")->text(),
              QStringLiteral("High Accuracy Mode (Recommended)\n  · Max 20 retries per sector\n"
                             "  · Majority voting for data integrity\n"));
    const auto* reset = on<QPushButton>(stage.page, "resetBtn");
    EXPECT_EQ(reset->text(), QStringLiteral("⟳  Reset — Start over"));
    EXPECT_EQ(reset->height(), 36);
    EXPECT_EQ(stage.button(0)->text(), QStringLiteral("↺"));
    EXPECT_EQ(stage.button(0)->toolTip(), QStringLiteral("Refresh CD drives"));
    EXPECT_EQ(stage.button(0)->width(), 36);
    EXPECT_EQ(stage.button(1)->width(), 90);
}

TEST_F(SourcePageTest, TextsInJapanese)
{
    Stage stage(1);
    EXPECT_EQ(on<QLabel>(stage.page, "stepHeading")->text(), QStringLiteral("ソースを選択してください"));
    EXPECT_EQ(groupTitles(stage.page), (QStringList{"CD ドライブ", "CUE/BIN File  ( CD drive not required )",
                                                    "Audio File  ( CD drive not required )", "Read Mode"}));
    EXPECT_EQ(on<QPushButton>(stage.page, "resetBtn")->text(), QStringLiteral("⟳  Reset — 最初からやり直す"));
}

TEST_F(SourcePageTest, ARefreshFindsADrivePluggedInAndLosesOneTakenAway)
{
    Stage stage;
    EXPECT_FALSE(stage.combo()->isEnabled());
    EXPECT_EQ(stage.combo()->placeholderText(), QStringLiteral("No CD drive detected"));
    EXPECT_TRUE(stage.cuePath()->isEnabled());

    stage.shelf.letters = {QStringLiteral("/dev/sr0"), QStringLiteral("/dev/sr1")};
    stage.button(0)->click();
    EXPECT_TRUE(stage.combo()->isEnabled());
    EXPECT_EQ(stage.combo()->count(), 2);
    EXPECT_EQ(stage.combo()->currentIndex(), 0);
    EXPECT_EQ(stage.combo()->itemText(1), QStringLiteral("CD-ROM  /dev/sr1"));
    EXPECT_EQ(stage.combo()->itemData(1).toString(), QStringLiteral("/dev/sr1"));

    stage.shelf.letters.clear();
    stage.button(0)->click();
    EXPECT_EQ(stage.combo()->count(), 0);
    EXPECT_FALSE(stage.combo()->isEnabled());
    EXPECT_EQ(stage.combo()->placeholderText(), QStringLiteral("No CD drive detected"));
}

TEST_F(SourcePageTest, WhatStandsInTheFieldsIsTheChoice)
{
    Stage stage(2, {QStringLiteral("/dev/sr0"), QStringLiteral("/dev/sr1")});
    EXPECT_EQ(stage.page.chosen().driveLetter, QStringLiteral("/dev/sr0")) << "without any click";
    EXPECT_TRUE(stage.page.chosen().isDrive());
    stage.combo()->setCurrentIndex(1);
    EXPECT_EQ(stage.page.chosen().driveLetter, QStringLiteral("/dev/sr1"));
    stage.cuePath()->setText(QStringLiteral("/a.cue"));
    EXPECT_EQ(stage.page.chosen().cuePath, QStringLiteral("/a.cue"));
    EXPECT_TRUE(stage.page.chosen().isSheet());
    stage.audioPath()->setText(QStringLiteral("/a.wav"));
    EXPECT_EQ(stage.page.chosen().audioPath, QStringLiteral("/a.wav"));
    EXPECT_TRUE(stage.page.chosen().isAudioFile());
}

TEST_F(SourcePageTest, ACuePickTakesTheSheetInHandAndLeavesTheAudioFile)
{
    Stage stage(2, oneDrive);
    stage.audioPath()->setText(QStringLiteral("/some/song.wav"));
    const QString cue = makeCue();
    stage.pickCue(cue);
    EXPECT_EQ(stage.cuePath()->text(), cue);
    EXPECT_EQ(stage.audioPath()->text(), QStringLiteral("/some/song.wav"));
    EXPECT_EQ(stage.combo()->currentIndex(), -1);
    EXPECT_EQ(stage.sheets.size(), 1);
    EXPECT_EQ(stage.disc.toc.tracks.size(), 2);
}

TEST_F(SourcePageTest, ABrokenSheetStaysInItsFieldAndTheDiscStays)
{
    Stage stage;
    stage.pickCue(makeCue());
    const QString broken = writeFile(folder.path(), QStringLiteral("broken.cue"), "nothing here");
    stage.pickCue(broken);
    EXPECT_EQ(stage.cuePath()->text(), broken);
    EXPECT_EQ(stage.disc.toc.albumTitle, QStringLiteral("Test Album"));
    EXPECT_EQ(stage.sheets.size(), 1) << "none for the broken one";
}

TEST_F(SourcePageTest, ACancelledPickChangesNothing)
{
    Stage stage(2, oneDrive);
    stage.cuePath()->setText(QStringLiteral("typed"));
    stage.pickCue(QString());
    stage.pickAudio(QString());
    EXPECT_EQ(stage.cuePath()->text(), QStringLiteral("typed"));
    EXPECT_TRUE(stage.audioPath()->text().isEmpty());
    EXPECT_EQ(stage.combo()->currentIndex(), 0);
    EXPECT_EQ(stage.sheets.size(), 0);
}

TEST_F(SourcePageTest, AnAudioPickClearsTheSheet)
{
    Stage stage(2, oneDrive);
    stage.pickCue(makeCue());
    const QString song = writeFile(folder.path(), QStringLiteral("a song.wav"), wrapInWave(makeAudio(1, 1)));
    stage.combo()->setCurrentIndex(0);
    stage.pickAudio(song);
    EXPECT_EQ(stage.audioPath()->text(), song);
    EXPECT_TRUE(stage.cuePath()->text().isEmpty());
    EXPECT_EQ(stage.combo()->currentIndex(), -1);
    EXPECT_EQ(stage.disc.toc.tracks.size(), 2) << "the file is not looked at yet";
}

TEST_F(SourcePageTest, TheLetterIsFoundInTheTextOfAnItemWithoutData)
{
    Stage stage(2, {QStringLiteral("D:")});
    stage.combo()->setItemData(0, QString());
    EXPECT_EQ(stage.page.chosen().driveLetter, QStringLiteral("D:"));
}

TEST_F(SourcePageTest, AnItemWithNeitherDataNorALetterIsNoSource)
{
    Stage stage(2, oneDrive);
    stage.combo()->setItemData(0, QString());
    EXPECT_EQ(stage.page.chosen().driveLetter, QString());
    EXPECT_FALSE(stage.page.chosen().isDrive());
}

TEST_F(SourcePageTest, ClearedNothingIsChosenAndTheDrivesStayInTheirList)
{
    Stage stage(2, oneDrive);
    stage.cuePath()->setText(QStringLiteral("/a.cue"));
    stage.audioPath()->setText(QStringLiteral("/a.wav"));
    stage.page.clear();
    const ChosenSource chosen = stage.page.chosen();
    EXPECT_EQ(chosen.driveLetter, QString());
    EXPECT_EQ(chosen.cuePath, QString());
    EXPECT_EQ(chosen.audioPath, QString());
    EXPECT_EQ(stage.combo()->count(), 1);
}

TEST_F(SourcePageTest, TheResetButtonAsksForAResetAndDoesNoneItself)
{
    Stage stage(2, oneDrive);
    const QSignalSpy asked(&stage.page, &SourcePage::resetClicked);
    on<QPushButton>(stage.page, "resetBtn")->click();
    EXPECT_EQ(asked.size(), 1);
    EXPECT_EQ(stage.combo()->currentIndex(), 0);
}

TEST_F(SourcePageTest, TheFocusGoesToTheDrivesOrPastThemWhereThereAreNone)
{
    Stage with(2, oneDrive);
    with.page.focusFirst();
    EXPECT_EQ(with.page.focusWidget(), with.combo());
    Stage without;
    without.page.focusFirst();
    EXPECT_EQ(without.page.focusWidget(), without.cuePath());
}

TEST(ChosenSource, TheFileWinsOverTheSheetAndTheSheetOverTheDrive)
{
    const QString one = QStringLiteral("1");
    const auto kinds = [](const ChosenSource& source) {
        return QList<bool>{source.isDrive(), source.isSheet(), source.isAudioFile()};
    };
    EXPECT_EQ(kinds({one, one, one}), (QList<bool>{false, false, true}));
    EXPECT_EQ(kinds({one, one, {}}), (QList<bool>{false, true, false}));
    EXPECT_EQ(kinds({{}, one, {}}), (QList<bool>{false, true, false}));
    EXPECT_EQ(kinds({one, {}, {}}), (QList<bool>{true, false, false}));
    EXPECT_EQ(kinds({{}, {}, {}}), (QList<bool>{false, false, false}));
}
