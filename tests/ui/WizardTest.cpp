#include "ui/WindowDriver.h"

#include "support/DiscMaker.h"

#include <QCoreApplication>
#include <QScrollArea>
#include <QScrollBar>
#include <QSettings>
#include <QStackedWidget>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class Wizard : public ::testing::Test {
protected:
    void SetUp() override { QSettings().clear(); }

    QString makeCue()
    {
        ImageDescription image;
        image.tracks = {{0, QStringLiteral("Alpha")}, {20, QString()}};
        return writeImage(folder.path(), image, makeAudio(40, 1));
    }

    QTemporaryDir folder;
};

} // namespace

TEST_F(Wizard, FrameHasItsSizesAndTexts)
{
    WindowDriver app(2);
    MainWindow& window = app.window();
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Tarvel CD Ripper"));
    EXPECT_EQ(window.minimumSize(), QSize(960, 620));
    EXPECT_EQ(window.size(), QSize(1100, 680));
    EXPECT_EQ(app.find<QWidget>("titleBar")->height(), 44);
    EXPECT_EQ(app.find<QWidget>("stepBar")->height(), 48);
    EXPECT_EQ(app.find<QWidget>("navBar")->height(), 56);
    EXPECT_EQ(app.find<QLabel>("appTitle")->text(), QStringLiteral("TARVEL CD RIPPER"));
    EXPECT_EQ(app.find<QLabel>("verLabel")->text(), QStringLiteral("v2.0.0"));
    EXPECT_EQ(app.find<QPushButton>("settingsBtn")->text(), QStringLiteral("⚙  Settings"));
    EXPECT_EQ(app.find<QPushButton>("settingsBtn")->height(), 28);
    EXPECT_EQ(app.find<QPushButton>("convertBtn")->text(), QStringLiteral("⇄  Convert Files"));
    EXPECT_EQ(app.back()->text(), QStringLiteral("◀  Back"));
    EXPECT_EQ(app.next()->text(), QStringLiteral("Next  ▶"));
    EXPECT_EQ(app.next()->size(), QSize(110, 34));
    EXPECT_EQ(window.findChildren<QLabel*>(QStringLiteral("stepSep")).size(), 4);
    EXPECT_EQ(WindowDriver(1).find<QPushButton>("convertBtn")->text(), QStringLiteral("⇄  ファイル変換"));
}

TEST_F(Wizard, TheIndicatorMarksTheStepAndThoseDone)
{
    WindowDriver app;
    app.advanceTo(2);
    const QStringList names{"① Source", "② Output", "③ Metadata", "④ RIP", "⑤ Verify"};
    for (int i = 0; i < 5; ++i) {
        auto* label = app.find<QLabel>("stepLabel", i);
        EXPECT_EQ(label->text(), names[i]);
        EXPECT_EQ(label->property("active").toBool(), i == 2);
        EXPECT_EQ(label->property("done").toBool(), i < 2);
    }
}

// The colours of the style sheet: accent and a line below for the step, another
// blue for those done, and quiet for those to come.
TEST_F(Wizard, TheIndicatorShowsTheStepAndThoseDone)
{
    WindowDriver app;
    const auto colours = [&app] {
        QCoreApplication::processEvents();
        QStringList found;
        for (int i = 0; i < 5; ++i) {
            const auto* label = app.find<QLabel>("stepLabel", i);
            found << label->palette().color(label->foregroundRole()).name();
            EXPECT_EQ(label->font().bold(), found.last() == QStringLiteral("#4db8ff")) << i;
        }
        return found;
    };
    const QString active = QStringLiteral("#4db8ff");
    const QString done = QStringLiteral("#1a5a9a");
    const QString quiet = QStringLiteral("#2a5a8a");
    EXPECT_EQ(colours(), (QStringList{active, quiet, quiet, quiet, quiet}));
    app.advanceTo(2);
    EXPECT_EQ(colours(), (QStringList{done, done, active, quiet, quiet}));
    EXPECT_EQ(app.find<QLabel>("stepLabel", 2)->grab().toImage().pixelColor(5, 47).name(), active);
    EXPECT_NE(app.find<QLabel>("stepLabel", 1)->grab().toImage().pixelColor(5, 47).name(), active);
    WindowDriver::click(app.back());
    EXPECT_EQ(colours(), (QStringList{done, active, quiet, quiet, quiet}));
    WindowDriver::click(app.back());
    WindowDriver::click(app.reset());
    EXPECT_EQ(colours(), (QStringList{active, quiet, quiet, quiet, quiet}));
}

TEST_F(Wizard, NothingChosenEndsAtTheRipStepWithAnError)
{
    WindowDriver app;
    EXPECT_FALSE(app.back()->isVisible());
    app.advanceTo(1);
    EXPECT_TRUE(app.back()->isVisible());
    app.advanceTo(2);
    EXPECT_EQ(app.tracks()->rowCount(), 0);
    app.advanceTo(3);
    EXPECT_EQ(app.step(), 3);
    EXPECT_FALSE(app.next()->isEnabled());
    WindowDriver::click(app.rip());
    EXPECT_EQ(app.logLines(), (QStringList{"═══════════════════════════════════════", "  Error",
                                           "═══════════════════════════════════════",
                                           "Please select a source before ripping."}));
    EXPECT_TRUE(app.rip()->isEnabled());
    EXPECT_FALSE(app.next()->isEnabled());
    WindowDriver::click(app.back());
    EXPECT_EQ(app.step(), 2);
}

TEST_F(Wizard, AnAudioFileThatIsNoLongerChosenIsNoSource)
{
    WindowDriver app;
    app.audioPath()->setText(QStringLiteral("/music/a.wav"));
    app.advanceTo(2);
    WindowDriver::click(app.back());
    WindowDriver::click(app.back());
    app.audioPath()->clear();
    app.advanceTo(3);
    WindowDriver::click(app.rip());
    EXPECT_EQ(app.logLines().last(), QStringLiteral("Please select a source before ripping."));
    EXPECT_TRUE(app.rip()->isEnabled());
}

TEST_F(Wizard, AReturnToMetadataWithAnAudioFileLeavesNextDisabled)
{
    WindowDriver app;
    app.audioPath()->setText(QStringLiteral("/music/a.wav"));
    app.advanceTo(3);
    WindowDriver::click(app.back());
    EXPECT_EQ(app.step(), 2);
    EXPECT_FALSE(app.next()->isEnabled());
    WindowDriver::click(app.back());
    EXPECT_TRUE(app.next()->isEnabled());
}

TEST_F(Wizard, ARipOpensTheWayToVerifyOnceAndFinishCloses)
{
    WindowDriver app;
    app.outputPath()->setText(folder.path());
    app.pickCue(makeCue());
    app.advanceTo(3);
    ASSERT_FALSE(app.runRip().isEmpty());
    EXPECT_FALSE(app.rip()->isEnabled());
    EXPECT_TRUE(app.next()->isEnabled());
    WindowDriver::click(app.next());
    EXPECT_EQ(app.step(), 4);
    EXPECT_EQ(app.next()->text(), QStringLiteral("Finish"));
    ASSERT_EQ(app.verdicts()->rowCount(), 2);
    EXPECT_EQ(app.cell(app.verdicts(), 0, 0), QStringLiteral("01"));
    EXPECT_EQ(app.cell(app.verdicts(), 0, 1), QStringLiteral("Alpha"));
    EXPECT_EQ(app.cell(app.verdicts(), 1, 1), QStringLiteral("Track 2"));
    EXPECT_EQ(app.cell(app.verdicts(), 1, 2), QStringLiteral("—"));
    EXPECT_EQ(app.verdicts()->rowHeight(0), 26);

    WindowDriver::click(app.back());
    EXPECT_EQ(app.next()->text(), QStringLiteral("Next  ▶"));
    EXPECT_FALSE(app.next()->isEnabled());
    EXPECT_FALSE(app.rip()->isEnabled());
}

TEST_F(Wizard, WithoutADiscTheVerdictsListTheRowsOfTheTrackTable)
{
    WindowDriver app;
    app.advanceTo(2);
    app.tracks()->insertRow(0);
    app.tracks()->setItem(0, 0, new QTableWidgetItem(QStringLiteral("07")));
    app.tracks()->setItem(0, 1, new QTableWidgetItem(QStringLiteral("Mine")));
    app.advanceTo(3);
    app.next()->setEnabled(true); // as the end of a rip does, whatever a reset took back meanwhile
    WindowDriver::click(app.next());
    ASSERT_EQ(app.step(), 4);
    ASSERT_EQ(app.verdicts()->rowCount(), 1);
    EXPECT_EQ(app.cell(app.verdicts(), 0, 0), QStringLiteral("07"));
    EXPECT_EQ(app.cell(app.verdicts(), 0, 1), QStringLiteral("Mine"));
    EXPECT_EQ(app.cell(app.verdicts(), 0, 2), QStringLiteral("—"));
}

TEST_F(Wizard, FinishClosesTheWindow)
{
    WindowDriver app(1);
    app.outputPath()->setText(folder.path());
    app.pickCue(makeCue());
    app.advanceTo(3);
    ASSERT_FALSE(app.runRip().isEmpty());
    app.advanceTo(4);
    EXPECT_EQ(app.next()->text(), QStringLiteral("完了"));
    WindowDriver::click(app.next());
    EXPECT_FALSE(app.window().isVisible());
}

TEST_F(Wizard, ResetAfterARipMakesASecondRipPossible)
{
    WindowDriver app;
    app.outputPath()->setText(folder.path());
    const QString cue = makeCue();
    app.pickCue(cue);
    app.advanceTo(3);
    ASSERT_FALSE(app.runRip().isEmpty());
    app.advanceTo(4);
    while (app.step() > 0)
        WindowDriver::click(app.back());
    WindowDriver::click(app.reset());
    EXPECT_EQ(app.step(), 0);
    EXPECT_TRUE(app.logLines().isEmpty());
    EXPECT_EQ(app.onPage<QLabel>(3, "progressLabel")->text(), QStringLiteral("Press RIP START to begin"));
    EXPECT_EQ(app.verdicts()->rowCount(), 2);

    app.pickCue(cue);
    app.advanceTo(3);
    EXPECT_TRUE(app.rip()->isEnabled());
    EXPECT_FALSE(app.runRip().isEmpty());
}

TEST_F(Wizard, NoPageScrollsAtTheInitialSizeAndNoneIsCutAtTheSmallest)
{
    for (const int language : {1, 2}) {
        WindowDriver app(language, {QStringLiteral("/dev/sr0")});
        auto* stack = app.window().findChild<QStackedWidget*>();
        for (int page = 0; page < stack->count(); ++page) {
            auto* area = qobject_cast<QScrollArea*>(stack->widget(page));
            ASSERT_NE(area, nullptr);
            stack->setCurrentIndex(page);
            app.window().resize(1100, 680);
            QCoreApplication::processEvents();
            EXPECT_EQ(area->verticalScrollBar()->maximum(), 0) << "page " << page << " language " << language;
            EXPECT_EQ(area->horizontalScrollBar()->maximum(), 0) << "page " << page;
            app.window().resize(960, 620);
            QCoreApplication::processEvents();
            EXPECT_GE(area->widget()->height(), area->widget()->minimumSizeHint().height())
                << "page " << page;
            // The RIP and Verify steps have their whole page in the smallest window.
            if (page >= 3) {
                EXPECT_EQ(area->verticalScrollBar()->maximum(), 0)
                    << "page " << page << " language " << language;
            }
            EXPECT_EQ(area->horizontalScrollBar()->maximum(), 0) << "page " << page;
        }
    }
}
