// The whole wizard on a machine without a network.

#include "ui/Background.h"
#include "ui/WindowDriver.h"

#include "support/DiscMaker.h"
#include "support/OfflineServices.h"

#include <QFileInfo>
#include <QProgressBar>
#include <QRadioButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {

class OfflineRoad : public ::testing::Test {
protected:
    void SetUp() override { QSettings().clear(); }
    void TearDown() override { waitForBackground(); }

    /// From the Source step to the verdict, with two tracks as WAV files.
    void goTheWholeWay(WindowDriver& app, int language)
    {
        const bool japanese = language == 1;
        app.outputPath()->setText(folder.filePath(QString::number(language)));
        app.advanceTo(1);
        app.onPage<QRadioButton>(1, "fmtRadio", 1)->click();
        app.advanceTo(2);
        ASSERT_TRUE(app.next()->isEnabled());
        EXPECT_EQ(app.album()->placeholderText(),
                  japanese ? QStringLiteral("見つかりませんでした。手動で入力してください")
                           : QStringLiteral("Not found. Please enter it manually"));
        EXPECT_EQ(app.onPage<QLabel>(2, "artLabel")->text(), QStringLiteral("♪"));
        app.artist()->setText(QStringLiteral("Ada"));
        app.album()->setText(QStringLiteral("Blue"));
        app.tracks()->item(0, 1)->setText(QStringLiteral("By hand"));
        app.advanceTo(3);
        EXPECT_FALSE(app.runRip().isEmpty());
        EXPECT_TRUE(app.logLines().contains(QStringLiteral("  Track 01: ✦ saved  (errors:0)")));
        EXPECT_TRUE(app.logLines().contains(QStringLiteral("  Track 02: ✦ saved  (errors:0)")));

        WindowDriver::click(app.next());
        ASSERT_EQ(app.step(), 4);
        auto* bar = app.onPage<QProgressBar>(4, "ripProgress");
        ASSERT_TRUE(QTest::qWaitFor([&] { return bar->value() == 100; }, 60000));
        EXPECT_EQ(app.onPage<QLabel>(4, "verifyResult")->text(),
                  japanese ? QStringLiteral("—  照合できませんでした")
                           : QStringLiteral("—  Could not verify"));
        for (int row = 0; row < 2; ++row)
            EXPECT_EQ(app.cell(app.verdicts(), row, 2),
                      japanese ? QStringLiteral("—  未照合") : QStringLiteral("—  Not verified"));
        EXPECT_EQ(app.logLines().last(2),
                  (QStringList{QStringLiteral("  Could not connect to the AccurateRip server"),
                               QStringLiteral("═══════════════════════════════════════")}));
        EXPECT_TRUE(QFileInfo::exists(
            folder.filePath(QStringLiteral("%1/Ada - Blue/01. By hand.wav").arg(language))));
        EXPECT_EQ(app.next()->text(), japanese ? QStringLiteral("完了") : QStringLiteral("Finish"));
        EXPECT_TRUE(app.next()->isEnabled());
        EXPECT_TRUE(app.back()->isEnabled());
    }

    QTemporaryDir folder;
    OfflineServices offline;
};

} // namespace

TEST_F(OfflineRoad, ADiscIsRippedAndStaysUnverified)
{
    for (const int language : {1, 2}) {
        WindowDriver app(language, {QStringLiteral("/dev/sr0")});
        app.shelf().audio = makeAudio(300, 1);
        app.shelf().tracks = {{0}, {150}};
        goTheWholeWay(app, language);
    }
}

TEST_F(OfflineRoad, ASheetIsRippedAndStaysUnverified)
{
    ImageDescription image;
    image.tracks = {{0, QStringLiteral("Alpha")}, {60, QStringLiteral("Beta")}};
    const QString cue = writeImage(folder.path(), image, makeAudio(120, 1));
    for (const int language : {1, 2}) {
        WindowDriver app(language);
        app.pickCue(cue);
        EXPECT_EQ(app.tracks()->rowCount(), 2);
        goTheWholeWay(app, language);
    }
}

TEST_F(OfflineRoad, AfterAResetTheNextDiscGoesTheSameWay)
{
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    app.shelf().audio = makeAudio(300, 1);
    app.shelf().tracks = {{0}, {150}};
    goTheWholeWay(app, 2);
    while (app.step() > 0)
        WindowDriver::click(app.back());
    WindowDriver::click(app.reset());
    WindowDriver::click(app.onPage<QPushButton>(0, "browseBtn", 0));
    goTheWholeWay(app, 2);
}
