// What may happen to the dialog while a run lets events through.

#include "convert/ConvertDialog.h"

#include "convert/ConvertDialogView.h"
#include "convert/FolderOfAudio.h"
#include "support/Language.h"

#include <QApplication>
#include <QDir>
#include <QMainWindow>
#include <QPointer>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

class ConvertDialogRun : public ::testing::Test {
protected:
    ConvertDialogRun()
    {
        speak(2);
        window = std::make_unique<QMainWindow>();
        window->show();
        dialog = new ConvertDialog(window.get());
        dialog->setModal(true);
        dialog->show();
        for (int i = 0; i < fileCount; ++i)
            place.addWave(QStringLiteral("%1.wav").arg(i, 2, 10, QLatin1Char('0')));
        view().fill(place.source(), place.output());
    }

    ConvertDialogView view() const { return ConvertDialogView(dialog); }

    /// Clicks Convert, and acts once when the run first lets events through.
    void convertAnd(const std::function<void()>& act)
    {
        runningStatus.clear();
        QTimer moment;
        moment.setSingleShot(true);
        QObject::connect(&moment, &QTimer::timeout, [this, act] {
            runningStatus = view().status();
            act();
        });
        moment.start(0);
        view().click();
        EXPECT_TRUE(runningStatus.startsWith(QStringLiteral("Converting (1/")))
            << "acted in the middle of the run";
    }

    int convertedFiles() const
    {
        return static_cast<int>(place.outputTree().filter(QStringLiteral(".flac")).size());
    }

    static constexpr int fileCount = 12;
    FolderOfAudio place;
    std::unique_ptr<QMainWindow> window;
    QPointer<ConvertDialog> dialog;
    QString runningStatus;
};

} // namespace

TEST_F(ConvertDialogRun, OnlyTheButtonRestsAndTheRunKeepsItsValues)
{
    convertAnd([this] {
        EXPECT_FALSE(view().convert()->isEnabled());
        EXPECT_EQ(view().convert()->text(), QStringLiteral("Convert"));
        for (const QWidget* field :
             std::initializer_list<QWidget*>{view().source(), view().output(), view().format(),
                                             view().sourceBrowse(), view().outputBrowse()})
            EXPECT_TRUE(field->isEnabled());
        view().fill(QStringLiteral("/changed"), QStringLiteral("/changed too"));
        view().format()->setCurrentIndex(2);
        view().click();
    });
    EXPECT_EQ(runningStatus, QStringLiteral("Converting (1/12): 00.wav"));
    EXPECT_EQ(view().status(), QStringLiteral("Done: 12 of 12 files converted"));
    EXPECT_EQ(convertedFiles(), fileCount);
    EXPECT_EQ(view().source()->text(), QStringLiteral("/changed"));
}

TEST_F(ConvertDialogRun, ANameWithMarkupIsShownAsItIs)
{
    // No system forbids these; a tag's brackets are forbidden on one.
    place.addWave(QStringLiteral("! &lt;b&gt; %3 &amp;.wav"));
    convertAnd([this] { EXPECT_EQ(view().statusLabel()->textFormat(), Qt::PlainText); });
    EXPECT_EQ(runningStatus, QStringLiteral("Converting (1/13): ! &lt;b&gt; %3 &amp;.wav"));
}

TEST_F(ConvertDialogRun, EscapeHidesTheDialogAndTheRunGoesOn)
{
    convertAnd([this] {
        QTest::keyClick(view().source(), Qt::Key_Escape);
        EXPECT_FALSE(dialog->isVisible());
    });
    EXPECT_EQ(convertedFiles(), fileCount);
    EXPECT_EQ(view().status(), QStringLiteral("Done: 12 of 12 files converted"));
}

TEST_F(ConvertDialogRun, ClosingTheDialogLetsTheRunGoOn)
{
    convertAnd([this] { dialog->close(); });
    EXPECT_EQ(convertedFiles(), fileCount);
}

TEST_F(ConvertDialogRun, DestroyingTheDialogEndsTheRun)
{
    convertAnd([this] { delete dialog; });
    EXPECT_FALSE(dialog);
    // It was told before the first file.
    EXPECT_EQ(convertedFiles(), 0);
    EXPECT_TRUE(place.outputTree().isEmpty());
}

TEST_F(ConvertDialogRun, DestroyingTheWindowEndsTheRun)
{
    convertAnd([this] { window.reset(); });
    EXPECT_FALSE(dialog);
    EXPECT_EQ(convertedFiles(), 0);
}

TEST_F(ConvertDialogRun, ClosingTheWindowEndsTheRunAndTheProgram)
{
    QTimer patience;
    QObject::connect(&patience, &QTimer::timeout, [] { QCoreApplication::exit(1); });
    patience.start(20000);
    QTimer::singleShot(0, qApp, [this] {
        convertAnd([this] {
            dialog->reject();
            window->close();
        });
    });
    EXPECT_EQ(QApplication::exec(), 0);
    EXPECT_EQ(convertedFiles(), 0);
    EXPECT_TRUE(view().convert()->isEnabled());
}

TEST_F(ConvertDialogRun, AMinimisedWindowDoesNotEndTheRun)
{
    convertAnd([this] { window->showMinimized(); });
    EXPECT_EQ(convertedFiles(), fileCount);
}

TEST_F(ConvertDialogRun, ASecondDialogMayRunInTheMiddleOfTheFirst)
{
    convertAnd([this] {
        dialog->reject();
        ConvertDialog second(window.get());
        second.show();
        const ConvertDialogView other(&second);
        other.fill(place.source(), place.output());
        other.click();
        EXPECT_EQ(other.status(), QStringLiteral("Done: 12 of 12 files converted"));
    });
    EXPECT_EQ(view().status(), QStringLiteral("Done: 12 of 12 files converted"));
    EXPECT_EQ(convertedFiles(), 2 * fileCount);
}

TEST_F(ConvertDialogRun, TheDialogIsReadyAgainAfterASourceThatWentAway)
{
    convertAnd([this] { QDir(place.source()).removeRecursively(); });
    EXPECT_EQ(view().status(), QStringLiteral("Done: 0 of 12 files converted, 12 failed"));
    view().click();
    EXPECT_EQ(view().convert()->text(), QStringLiteral("Convert"));
    EXPECT_TRUE(view().convert()->isEnabled());
    EXPECT_TRUE(place.outputTree().isEmpty());
}
