#include "ui/WindowDriver.h"

#include "base/Settings.h"
#include "support/DiscMaker.h"
#include "support/FakeHttpTransport.h"
#include "support/LogCapture.h"

#include <QComboBox>
#include <QGroupBox>
#include <QSettings>
#include <QSpinBox>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <new>

namespace {

class SourcePage : public ::testing::Test {
protected:
    void SetUp() override { QSettings().clear(); }

    QString makeCue()
    {
        ImageDescription image;
        image.tracks = {{0, QStringLiteral("Alpha")}, {160, QString()}};
        return writeImage(folder.path(), image, makeAudio(400, 1));
    }

    QComboBox* combo(WindowDriver& app) { return app.onPage<QComboBox>(0, "driveCombo"); }

    QTemporaryDir folder;
};

QStringList groupTitles(QWidget* page)
{
    QStringList titles;
    for (const QGroupBox* group : page->findChildren<QGroupBox*>(QStringLiteral("sourceGroup")))
        titles << group->title();
    return titles;
}

} // namespace

TEST_F(SourcePage, TextsInEnglish)
{
    WindowDriver app(2);
    EXPECT_EQ(app.onPage<QLabel>(0, "stepHeading")->text(), QStringLiteral("Select a source"));
    EXPECT_EQ(groupTitles(app.pageAt(0)),
              (QStringList{"CD Drive", "CUE/BIN File  ( CD drive not required )",
                           "Audio File  ( CD drive not required )", "Read Mode"}));
    EXPECT_EQ(app.cuePath()->placeholderText(), QStringLiteral("Select .cue file..."));
    EXPECT_EQ(app.audioPath()->placeholderText(), QStringLiteral("Select audio file..."));
    EXPECT_EQ(app.onPage<QLabel>(0, "previewLabel")->text(),
              QStringLiteral("High Accuracy Mode (Recommended)\n  · Max 20 retries per sector\n"
                             "  · Majority voting for data integrity\n"));
    EXPECT_EQ(app.reset()->text(), QStringLiteral("⟳  Reset — Start over"));
    EXPECT_EQ(app.reset()->height(), 36);
    auto* refresh = app.onPage<QPushButton>(0, "browseBtn", 0);
    EXPECT_EQ(refresh->text(), QStringLiteral("↺"));
    EXPECT_EQ(refresh->toolTip(), QStringLiteral("Refresh CD drives"));
    EXPECT_EQ(refresh->width(), 36);
    EXPECT_EQ(app.onPage<QPushButton>(0, "browseBtn", 1)->width(), 90);
}

TEST_F(SourcePage, TextsInJapanese)
{
    WindowDriver app(1);
    EXPECT_EQ(app.onPage<QLabel>(0, "stepHeading")->text(), QStringLiteral("ソースを選択してください"));
    EXPECT_EQ(groupTitles(app.pageAt(0)),
              (QStringList{"CD ドライブ", "CUE/BIN File  ( CD drive not required )",
                           "Audio File  ( CD drive not required )", "Read Mode"}));
    EXPECT_EQ(app.reset()->text(), QStringLiteral("⟳  Reset — 最初からやり直す"));
}

TEST_F(SourcePage, ARefreshFindsADrivePluggedInAndLosesOneTakenAway)
{
    WindowDriver app;
    EXPECT_FALSE(combo(app)->isEnabled());
    EXPECT_EQ(combo(app)->placeholderText(), QStringLiteral("No CD drive detected"));
    EXPECT_TRUE(app.cuePath()->isEnabled());

    app.shelf().letters = {QStringLiteral("/dev/sr0"), QStringLiteral("/dev/sr1")};
    WindowDriver::click(app.onPage<QPushButton>(0, "browseBtn", 0));
    EXPECT_TRUE(combo(app)->isEnabled());
    EXPECT_EQ(combo(app)->count(), 2);
    EXPECT_EQ(combo(app)->currentIndex(), 0);
    EXPECT_EQ(combo(app)->itemText(1), QStringLiteral("CD-ROM  /dev/sr1"));
    EXPECT_EQ(combo(app)->itemData(1).toString(), QStringLiteral("/dev/sr1"));

    app.shelf().letters.clear();
    WindowDriver::click(app.onPage<QPushButton>(0, "browseBtn", 0));
    EXPECT_EQ(combo(app)->count(), 0);
    EXPECT_FALSE(combo(app)->isEnabled());
    EXPECT_EQ(combo(app)->placeholderText(), QStringLiteral("No CD drive detected"));
}

TEST_F(SourcePage, ACuePickFillsTheMetadataPage)
{
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    app.audioPath()->setText(QStringLiteral("/some/song.wav"));
    const QString cue = makeCue();
    app.pickCue(cue);
    EXPECT_EQ(app.cuePath()->text(), cue);
    EXPECT_EQ(app.audioPath()->text(), QStringLiteral("/some/song.wav"));
    EXPECT_EQ(combo(app)->currentIndex(), -1);
    EXPECT_EQ(app.album()->text(), QStringLiteral("Test Album"));
    EXPECT_EQ(app.artist()->text(), QStringLiteral("Test Artist"));
    EXPECT_EQ(app.year()->text(), QStringLiteral("1998"));
    ASSERT_EQ(app.tracks()->rowCount(), 2);
    EXPECT_EQ(app.tracks()->rowHeight(0), 26);
    EXPECT_EQ(app.cell(app.tracks(), 0, 0), QStringLiteral("01"));
    EXPECT_EQ(app.cell(app.tracks(), 0, 1), QStringLiteral("Alpha"));
    EXPECT_EQ(app.cell(app.tracks(), 0, 2), QStringLiteral("0:02")); // 160 sectors
    EXPECT_EQ(app.cell(app.tracks(), 1, 1), QString());
    EXPECT_EQ(app.cell(app.tracks(), 1, 2), QStringLiteral("0:03")); // 240 sectors
}

// What leaves a slot ends the program.
TEST_F(SourcePage, WantOfMemoryForTheCoverOfASheetIsNoCover)
{
    WindowDriver app(2);
    const QString cue = makeCue();
    FakeHttpTransport exhausted([](const HttpRequest&) -> HttpAnswer { throw std::bad_alloc(); });
    const LogCapture log;
    {
        const HttpTransportOverride inPlace(exhausted);
        app.pickCue(cue);
    }
    EXPECT_EQ(exhausted.requests().size(), 1);
    EXPECT_EQ(app.album()->text(), QStringLiteral("Test Album"));
    EXPECT_EQ(app.tracks()->rowCount(), 2);
    EXPECT_EQ(app.onPage<QLabel>(2, "artLabel")->text(), QStringLiteral("♪"));
    EXPECT_TRUE(log.warnings().contains(QStringLiteral("[Meta/CUE] cover given up: std::bad_alloc")));
}

TEST_F(SourcePage, ACancelledPickChangesNothing)
{
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    app.cuePath()->setText(QStringLiteral("typed"));
    app.pickCue(QString());
    app.pickAudio(QString());
    EXPECT_EQ(app.cuePath()->text(), QStringLiteral("typed"));
    EXPECT_TRUE(app.audioPath()->text().isEmpty());
    EXPECT_EQ(combo(app)->currentIndex(), 0);
}

TEST_F(SourcePage, ABrokenSheetStaysInItsFieldAndTheDiscStays)
{
    WindowDriver app;
    app.pickCue(makeCue());
    const QString broken = writeFile(folder.path(), QStringLiteral("broken.cue"), "nothing here");
    app.pickCue(broken);
    EXPECT_EQ(app.cuePath()->text(), broken);
    EXPECT_EQ(app.album()->text(), QStringLiteral("Test Album"));
    EXPECT_EQ(app.tracks()->rowCount(), 2);
}

TEST_F(SourcePage, AnAudioPickClearsTheSheet)
{
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    app.pickCue(makeCue());
    const QString song = writeFile(folder.path(), QStringLiteral("a song.wav"), wrapInWave(makeAudio(1, 1)));
    app.pickAudio(song);
    EXPECT_EQ(app.audioPath()->text(), song);
    EXPECT_TRUE(app.cuePath()->text().isEmpty());
    EXPECT_EQ(combo(app)->currentIndex(), -1);
}

TEST_F(SourcePage, ResetEmptiesWhatWasChosenAndKeepsTheRest)
{
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    app.pickCue(makeCue());
    app.outputPath()->setText(QStringLiteral("/kept"));
    app.onPage<QSpinBox>(2, "formEdit", 0)->setValue(2);
    app.onPage<QSpinBox>(2, "formEdit", 1)->setValue(3);
    app.album()->setPlaceholderText(QStringLiteral("something"));
    WindowDriver::click(app.reset());

    EXPECT_EQ(combo(app)->currentIndex(), -1);
    EXPECT_EQ(combo(app)->count(), 1);
    EXPECT_TRUE(app.cuePath()->text().isEmpty());
    EXPECT_TRUE(app.album()->text().isEmpty());
    EXPECT_TRUE(app.album()->placeholderText().isEmpty());
    EXPECT_TRUE(app.artist()->text().isEmpty());
    EXPECT_TRUE(app.year()->text().isEmpty());
    EXPECT_EQ(app.tracks()->rowCount(), 0);
    EXPECT_EQ(app.onPage<QLabel>(2, "artLabel")->text(), QStringLiteral("♪"));
    EXPECT_EQ(app.onPage<QSpinBox>(2, "formEdit", 0)->value(), 1);
    EXPECT_EQ(app.onPage<QSpinBox>(2, "formEdit", 1)->value(), 1);
    EXPECT_EQ(app.outputPath()->text(), QStringLiteral("/kept"));
    EXPECT_EQ(app.card(0), QStringLiteral("—"));
    EXPECT_EQ(app.card(1), QStringLiteral("0"));
    EXPECT_EQ(app.card(2), QStringLiteral("0"));
    EXPECT_EQ(app.card(3), QStringLiteral("—"));

    // No letter is left, so the Metadata step has no source.
    app.shelf().audio = makeAudio(200, 1);
    app.advanceTo(2);
    EXPECT_EQ(app.tracks()->rowCount(), 0);
    EXPECT_TRUE(app.shelf().commands.isEmpty());
}

TEST_F(SourcePage, TheOffsetOfADriveComesFromItsOwnGroup)
{
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    app.shelf().audio = makeAudio(200, 1);
    app.shelf().vendor = "AC/ME";
    app.shelf().product = "X\\9";
    QSettings().setValue(QStringLiteral("driveOffsets/AC_ME - X_9/offset"), -30);
    QSettings().setValue(QStringLiteral("driveOffsets/AC_ME - X_9/source"),
                         QStringLiteral("set in Settings"));
    app.advanceTo(3);
    app.runRip();
    EXPECT_TRUE(app.logLines().contains(QStringLiteral("Drive  : AC/ME - X\\9")));
    EXPECT_TRUE(app.logLines().contains(QStringLiteral("Read offset : -30  (set in Settings)")));
}

TEST_F(SourcePage, ADriveWithoutAnEntryKeepsTheOffsetInForce)
{
    QSettings().setValue(QLatin1String(settings::sampleOffset), 6);
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    app.shelf().audio = makeAudio(200, 1);
    app.advanceTo(3);
    app.runRip();
    EXPECT_TRUE(app.logLines().contains(QStringLiteral("Read offset : +6  (Settings value)")));
}

TEST_F(SourcePage, ADriveWithoutAnEntryKeepsTheOffsetOfTheDriveBeforeIt)
{
    QSettings().setValue(QStringLiteral("driveOffsets/ACME - DISC READER 9/offset"), 6);
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    app.shelf().audio = makeAudio(200, 1);
    app.advanceTo(2);
    WindowDriver::click(app.back());
    app.shelf().product = "STRANGER        ";
    app.advanceTo(3);
    app.runRip();
    EXPECT_TRUE(app.logLines().contains(QStringLiteral("Drive  : ACME - STRANGER")));
    EXPECT_TRUE(app.logLines().contains(QStringLiteral("Read offset : +6  (Settings value)")));
}

TEST_F(SourcePage, AnOffsetOfADriveWithoutItsSourceIsASavedOne)
{
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    app.shelf().audio = makeAudio(200, 1);
    QSettings().setValue(QStringLiteral("driveOffsets/ACME - DISC READER 9/offset"), 1);
    app.advanceTo(3);
    app.runRip();
    EXPECT_TRUE(app.logLines().contains(QStringLiteral("Read offset : +1  (saved)")));
}

TEST_F(SourcePage, TheLetterIsFoundInTheTextOfAnItemWithoutData)
{
    WindowDriver app(2, {QStringLiteral("D:")});
    app.shelf().letter = QStringLiteral("D:");
    app.shelf().audio = makeAudio(200, 1);
    combo(app)->setItemData(0, QString());
    app.advanceTo(2);
    EXPECT_EQ(app.tracks()->rowCount(), 1);
}

TEST_F(SourcePage, AnItemWithNeitherDataNorALetterIsNoSource)
{
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    app.shelf().audio = makeAudio(200, 1);
    combo(app)->setItemData(0, QString());
    app.advanceTo(2);
    EXPECT_EQ(app.step(), 2);
    EXPECT_EQ(app.tracks()->rowCount(), 0);
    EXPECT_TRUE(app.shelf().commands.isEmpty());
}

TEST_F(SourcePage, ADriveOfUnknownModelSaysSo)
{
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    app.shelf().audio = makeAudio(200, 1);
    app.shelf().vendor.clear();
    app.shelf().product.clear();
    app.advanceTo(3);
    app.runRip();
    EXPECT_TRUE(app.logLines().contains(QStringLiteral("Drive  : (unknown)")));
    EXPECT_TRUE(
        app.logLines().contains(QStringLiteral("Read offset : 0  (drive model unknown - Settings value)")));
}
