// What the Metadata step shows of a drive that has no disc to read, or not yet.

#include "ui/HeldRip.h"
#include "ui/WindowDriver.h"

#include "support/DiscMaker.h"
#include "support/LoadingDrive.h"

#include <QComboBox>
#include <QFontInfo>
#include <QGuiApplication>
#include <QScrollArea>
#include <QScrollBar>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <optional>
#include <semaphore>

#include <gtest/gtest.h>

namespace {

const QString drivePath = QStringLiteral("/dev/sr0");

std::optional<Qt::CursorShape> shownCursor()
{
    const QCursor* cursor = QGuiApplication::overrideCursor();
    return cursor ? std::optional(cursor->shape()) : std::nullopt;
}

/// A window beside a drive that can be given its disc just now.
class Stage {
public:
    explicit Stage(int language, const QString& letter = drivePath) : app(language, {letter})
    {
        app.shelf().audio = makeAudio(400, 1);
        app.shelf().tracks = {{0}, {200}};
    }

    /// Presses Next until the Metadata step, with a drive that says so for a minute.
    void enterWith(DriveFailure failure)
    {
        loading.failure = failure;
        loading.load(60);
        app.advanceTo(2);
    }

    /// One step back, and Next.
    void enterAgain()
    {
        WindowDriver::click(app.back());
        app.advanceTo(2);
    }

    /// What is shown; a null string for no line at all.
    QString notice()
    {
        const auto* label = app.onPage<QLabel>(2, "driveNotice");
        return label->isVisible() ? label->text() : QString();
    }

    WindowDriver app;
    LoadingDrive loading{app.shelf()};
    DrivePlatformOverride platform{loading};
};

class DriveNotice : public ::testing::Test {
protected:
    void SetUp() override { QSettings().clear(); }
    void TearDown() override { EXPECT_FALSE(shownCursor()); }

    QTemporaryDir folder;
};

constexpr char stillLoading[] = "The drive is still getting ready. Wait a moment, then press Back and Next.";
constexpr char noDisc[] =
    "There is no disc in the drive, or it is not ready. Insert a disc, then press Back and Next.";

} // namespace

TEST_F(DriveNotice, NextRightAfterLoadingADiscWorks)
{
    Stage stage(2);
    stage.loading.load(3);
    stage.app.advanceTo(2);
    EXPECT_EQ(stage.app.tracks()->rowCount(), 2);
    EXPECT_TRUE(stage.notice().isNull());
    stage.app.advanceTo(3);
    EXPECT_EQ(stage.app.step(), 3);
}

TEST_F(DriveNotice, TheCursorTellsOfTheWaitAndIsTakenBack)
{
    Stage stage(2);
    QList<std::optional<Qt::CursorShape>> shown;
    const auto refuseCheck = stage.loading.onVerify;
    const auto refuseToc = stage.loading.onToc;
    stage.loading.onOpen = [&] { shown << shownCursor(); };
    stage.loading.onVerify = [&](DriveReply& reply) {
        shown << shownCursor();
        refuseCheck(reply);
    };
    stage.loading.onToc = [&](std::span<quint8, 804> table, DriveReply& reply) {
        shown << shownCursor();
        refuseToc(table, reply);
    };
    stage.loading.load(3);
    stage.app.advanceTo(1);
    EXPECT_FALSE(shownCursor());
    stage.app.advanceTo(2);
    EXPECT_FALSE(shownCursor());
    EXPECT_EQ(shown, (QList<std::optional<Qt::CursorShape>>(15, Qt::WaitCursor)))
        << "the opening, 13 checks and the table";

    stage.loading.load(60);
    stage.enterAgain();
    EXPECT_FALSE(stage.notice().isNull());
    EXPECT_FALSE(shownCursor());
}

TEST_F(DriveNotice, EachReasonHasItsLineInBothLanguages)
{
    struct Line {
        DriveFailure failure;
        const char* english;
        const char* japanese;
    };
    const QList<Line> lines{
        {DriveFailure::becomingReady, stillLoading,
         "ドライブの準備がまだできていません。少し待ってから Back、Next の順に押してください。"},
        {DriveFailure::notReady, noDisc,
         "ディスクが入っていないか、ドライブの準備ができていません。ディスクを入れて Back、Next "
         "の順に押してください。"},
        {DriveFailure::unreadable,
         "The drive could not read the disc's table of contents. Is it an audio CD?",
         "ディスクの目次 (TOC) を読み取れませんでした。音楽 CD かどうか確認してください。"},
        {DriveFailure::unknown, "The drive could not read the disc's table of contents. Is it an audio CD?",
         "ディスクの目次 (TOC) を読み取れませんでした。音楽 CD かどうか確認してください。"},
    };
    for (const Line& line : lines) {
        for (const int language : {1, 2}) {
            Stage stage(language);
            stage.enterWith(line.failure);
            EXPECT_EQ(stage.notice(), QString::fromUtf8(language == 1 ? line.japanese : line.english));
            EXPECT_EQ(stage.app.tracks()->rowCount(), 0);
            EXPECT_TRUE(stage.app.next()->isEnabled());
        }
    }
}

TEST_F(DriveNotice, ADriveThatCannotBeOpenedSaysSo)
{
    Stage english(2, QStringLiteral("/dev/sr7"));
    english.app.advanceTo(2);
    EXPECT_EQ(english.notice(),
              QStringLiteral("The drive could not be opened. Is it in use, or is the permission missing?"));
    Stage japanese(1, QStringLiteral("/dev/sr7"));
    japanese.app.advanceTo(2);
    EXPECT_EQ(japanese.notice(),
              QStringLiteral("ドライブを開けませんでした。使用中でないか、権限があるかを確認してください。"));
}

TEST_F(DriveNotice, WithoutASourceThereIsNoLine)
{
    Stage stage(2);
    stage.app.onPage<QComboBox>(0, "driveCombo")->setCurrentIndex(-1);
    stage.app.advanceTo(2);
    EXPECT_TRUE(stage.notice().isNull());
}

TEST_F(DriveNotice, TheLineGoesWhenTheDiscIsRead)
{
    Stage stage(2);
    stage.enterWith(DriveFailure::becomingReady);
    ASSERT_EQ(stage.notice(), QLatin1String(stillLoading));
    stage.loading.load(0);
    stage.enterAgain();
    EXPECT_TRUE(stage.notice().isNull());
    EXPECT_EQ(stage.app.tracks()->rowCount(), 2);
}

TEST_F(DriveNotice, TheLineFollowsWhatTheDriveSaysNow)
{
    Stage stage(2);
    stage.enterWith(DriveFailure::becomingReady);
    ASSERT_EQ(stage.notice(), QLatin1String(stillLoading));
    stage.loading.failure = DriveFailure::notReady;
    stage.enterAgain();
    EXPECT_EQ(stage.notice(), QLatin1String(noDisc));
}

TEST_F(DriveNotice, TheLineGoesWithAReset)
{
    Stage stage(2);
    stage.enterWith(DriveFailure::notReady);
    ASSERT_FALSE(stage.notice().isNull());
    while (stage.app.step() > 0)
        WindowDriver::click(stage.app.back());
    WindowDriver::click(stage.app.reset());
    EXPECT_TRUE(stage.app.onPage<QLabel>(2, "driveNotice")->isHidden());
    stage.app.advanceTo(2);
    EXPECT_TRUE(stage.notice().isNull()) << "there is no source";
}

TEST_F(DriveNotice, TheLineGoesWithAnotherSource)
{
    Stage stage(2);
    stage.enterWith(DriveFailure::notReady);
    ASSERT_FALSE(stage.notice().isNull());
    stage.app.audioPath()->setText(QStringLiteral("/music/a.wav"));
    stage.enterAgain();
    EXPECT_TRUE(stage.notice().isNull());

    Stage other(2);
    other.enterWith(DriveFailure::notReady);
    ASSERT_FALSE(other.notice().isNull());
    ImageDescription image;
    image.tracks = {{0, QStringLiteral("Alpha")}};
    other.app.pickCue(writeImage(folder.path(), image, makeAudio(60, 1)));
    other.enterAgain();
    EXPECT_TRUE(other.notice().isNull());
}

TEST_F(DriveNotice, ADriveThatARipHasBorrowedIsNotCalledShut)
{
    Stage stage(2);
    WindowDriver& app = stage.app;
    app.outputPath()->setText(folder.path());
    app.advanceTo(3);
    bool ended = false;
    const DialogWatcher watcher([&](QDialog* dialog) {
        ended = true;
        dialog->accept();
    });
    std::binary_semaphore gate{0};
    std::atomic<bool> holding = true;
    std::atomic<bool> held = false;
    app.shelf().onClock = [&] {
        if (holding.exchange(false)) {
            held = true;
            gate.acquire();
        }
    };
    WindowDriver::click(app.rip());
    EXPECT_TRUE(QTest::qWaitFor([&] { return held.load(); }, 60000));
    WindowDriver::click(app.back());
    EXPECT_EQ(app.step(), 2);
    EXPECT_TRUE(stage.notice().isNull());
    EXPECT_EQ(app.tracks()->rowCount(), 2);
    gate.release();
    EXPECT_TRUE(QTest::qWaitFor([&] { return ended; }, 60000));
}

// A reset forgets the disc, and the drive is with the rip until it ends.
TEST_F(DriveNotice, ADriveThatARipStillHasAfterAResetIsSaidToBeInUse)
{
    Gate reading;
    Stage stage(2);
    WindowDriver& app = stage.app;
    app.outputPath()->setText(folder.path());
    app.advanceTo(3);
    bool ended = false;
    const DialogWatcher watcher([&ended](QDialog* dialog) {
        ended = true;
        dialog->accept();
    });
    app.shelf().onClock = [&reading] { reading.pass(); };
    WindowDriver::click(app.rip());
    ASSERT_TRUE(QTest::qWaitFor([&reading] { return reading.isHolding(); }, 60000));
    const auto resetAndEnter = [&app](const QString& audioFile) {
        while (app.step() > 0)
            WindowDriver::click(app.back());
        WindowDriver::click(app.reset());
        app.audioPath()->setText(audioFile);
        app.advanceTo(2);
    };
    const QString inUse =
        QStringLiteral("The drive could not be opened. Is it in use, or is the permission missing?");

    resetAndEnter(QString());
    EXPECT_TRUE(stage.notice().isNull()) << "no drive is chosen";
    WindowDriver::click(app.back());
    WindowDriver::click(app.back());
    app.onPage<QComboBox>(0, "driveCombo")->setCurrentIndex(0);
    app.advanceTo(2);
    EXPECT_EQ(stage.notice(), inUse);

    resetAndEnter(QStringLiteral("/music/a.wav"));
    while (app.step() > 0)
        WindowDriver::click(app.back());
    app.audioPath()->clear();
    app.onPage<QComboBox>(0, "driveCombo")->setCurrentIndex(0);
    app.advanceTo(2);
    EXPECT_EQ(stage.notice(), inUse) << "the track on the page is the file's";

    reading.open();
    EXPECT_TRUE(QTest::qWaitFor([&ended] { return ended; }, 60000));
    stage.enterAgain();
    EXPECT_TRUE(stage.notice().isNull());
    EXPECT_EQ(app.tracks()->rowCount(), 2);
}

// The line is one more widget on the page and moves none of the others.
TEST_F(DriveNotice, EverythingElseStaysInItsPlace)
{
    if (QFontInfo(QFont(QStringLiteral("Noto Sans"))).family() != QStringLiteral("Noto Sans"))
        GTEST_SKIP() << "the lines have room in the font that the page was laid out for";
    for (const int language : {1, 2}) {
        for (const QSize size : {QSize(1100, 680), QSize(960, 620)}) {
            Stage stage(language);
            stage.app.window().resize(size);
            stage.app.advanceTo(2);
            ASSERT_TRUE(stage.notice().isNull());
            auto* area = static_cast<QScrollArea*>(stage.app.pageAt(2));
            QWidget* page = area->widget();
            auto* notice = stage.app.onPage<QLabel>(2, "driveNotice");
            auto* section = stage.app.onPage<QLabel>(2, "sectionLabel");
            QList<QWidget*> others = page->findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
            others.removeOne(notice);
            others.removeOne(section);
            const auto places = [&] {
                QCoreApplication::processEvents();
                QList<QRect> found;
                for (const QWidget* widget : others)
                    found << widget->geometry();
                return found;
            };
            const QList<QRect> placesBefore = places();
            const QRect sectionBefore = section->geometry();
            const int scrollingBefore = area->verticalScrollBar()->maximum();
            for (const DriveFailure failure :
                 {DriveFailure::becomingReady, DriveFailure::notReady, DriveFailure::unreadable}) {
                stage.loading.failure = failure;
                stage.loading.load(60);
                stage.enterAgain();
                ASSERT_FALSE(stage.notice().isNull());
                EXPECT_EQ(places(), placesBefore);
                EXPECT_EQ(section->geometry().topLeft(), sectionBefore.topLeft());
                EXPECT_GE(notice->width(), notice->fontMetrics().horizontalAdvance(notice->text()))
                    << "whole";
                EXPECT_EQ(area->horizontalScrollBar()->maximum(), 0);
                EXPECT_EQ(area->verticalScrollBar()->maximum(), scrollingBefore);
            }
        }
    }
}
