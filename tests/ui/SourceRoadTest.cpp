// What the window makes of what is chosen on its first page.

#include "ui/WindowDriver.h"

#include "support/DiscMaker.h"

#include <QComboBox>
#include <QSettings>
#include <QSpinBox>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class SourceRoad : public ::testing::Test {
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

} // namespace

TEST_F(SourceRoad, ACuePickFillsTheMetadataPage)
{
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    app.pickCue(makeCue());
    EXPECT_EQ(app.album()->text(), QStringLiteral("Test Album"));
    ASSERT_EQ(app.tracks()->rowCount(), 2);
    EXPECT_EQ(app.cell(app.tracks(), 0, 1), QStringLiteral("Alpha"));
}

TEST_F(SourceRoad, ResetEmptiesWhatWasChosenAndKeepsTheRest)
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

TEST_F(SourceRoad, TheOffsetOfADriveComesFromItsOwnGroup)
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

TEST_F(SourceRoad, ADriveWithoutAnEntryKeepsTheOffsetOfTheDriveBeforeIt)
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
