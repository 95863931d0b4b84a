// The wizard by keys alone: no test here sets the focus or clicks.

#include "ui/HeldRip.h"
#include "ui/WindowDriver.h"

#include "support/DiscMaker.h"

#include <QApplication>
#include <QComboBox>
#include <QFileInfo>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QTextEdit>

#include <gtest/gtest.h>

namespace {

class KeyboardRoad : public ::testing::Test {
protected:
    void SetUp() override { QSettings().clear(); }

    static void activate(WindowDriver& app)
    {
        app.window().activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&app.window()));
    }

    static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }

    static void type(const QString& text)
    {
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        QTest::keyClicks(QApplication::focusWidget(), text);
    }

    /// Presses Tab until the widget has the focus.
    static void tabTo(QWidget* wanted)
    {
        constexpr int stopsOfAPage = 20;
        for (int i = 0; i < stopsOfAPage && QApplication::focusWidget() != wanted; ++i)
            press(Qt::Key_Tab);
        ASSERT_EQ(QApplication::focusWidget(), wanted);
    }

    static void goOn(WindowDriver& app)
    {
        ASSERT_TRUE(QTest::qWaitFor([&] { return app.next()->isEnabled(); }, 60000));
        const int before = app.step();
        tabTo(app.next());
        press(Qt::Key_Space);
        ASSERT_EQ(app.step(), before + 1);
    }

    static bool hasFocus(const QWidget* widget) { return widget && QApplication::focusWidget() == widget; }
    static QTextEdit* log(WindowDriver& app) { return app.pageAt(3)->findChild<QTextEdit*>(); }
    static QComboBox* drives(WindowDriver& app) { return app.onPage<QComboBox>(0, "driveCombo"); }

    static void loadDisc(WindowDriver& app)
    {
        app.shelf().audio = makeAudio(600, 1);
        app.shelf().tracks = {{0}, {300}};
    }

    /// With the result box dismissed by a key.
    static void pressAndWaitForTheEnd(Qt::Key key)
    {
        bool done = false;
        const DialogWatcher watcher([&done](QDialog* dialog) {
            QTest::keyClick(dialog, Qt::Key_Return);
            done = true;
        });
        press(key);
        ASSERT_TRUE(QTest::qWaitFor([&] { return done; }, 60000));
    }

    QTemporaryDir folder;
};

} // namespace

TEST_F(KeyboardRoad, AWholeRipOfASheetNeedsNoMouse)
{
    ImageDescription image;
    image.tracks = {{0, QStringLiteral("One")}};
    const QString cue = writeImage(folder.path(), image, makeAudio(20, 1));
    WindowDriver app(2);
    activate(app);
    ASSERT_TRUE(hasFocus(app.cuePath())) << "there is no drive";
    press(Qt::Key_Tab);
    bool picked = false;
    {
        const DialogWatcher watcher([&](QDialog* dialog) {
            dialog->activateWindow();
            picked = QTest::qWaitFor([dialog] { return dialog->isAncestorOf(QApplication::focusWidget()); },
                                     60000);
            type(cue);
            press(Qt::Key_Return);
            dialog->close(); // where the keys did not
        });
        press(Qt::Key_Space);
    }
    ASSERT_TRUE(picked);
    ASSERT_EQ(app.cuePath()->text(), cue);
    activate(app);
    goOn(app);
    tabTo(app.outputPath());
    press(Qt::Key_A, Qt::ControlModifier);
    type(folder.path());
    goOn(app);
    ASSERT_TRUE(hasFocus(app.album()));
    press(Qt::Key_A, Qt::ControlModifier);
    type(QStringLiteral("Typed"));
    goOn(app);
    ASSERT_TRUE(hasFocus(app.rip()));
    pressAndWaitForTheEnd(Qt::Key_Space);
    EXPECT_TRUE(QFileInfo::exists(folder.filePath(QStringLiteral("Test Artist - Typed/01. One.flac"))));
    activate(app);
    ASSERT_TRUE(hasFocus(app.next()));
    press(Qt::Key_Space);
    EXPECT_EQ(app.step(), 4);
    EXPECT_TRUE(hasFocus(app.next())) << "Finish";
}

TEST_F(KeyboardRoad, TheFocusIsWhereTheNextActIs)
{
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    loadDisc(app);
    app.outputPath()->setText(folder.path());
    activate(app);
    EXPECT_TRUE(hasFocus(drives(app)));
    goOn(app);
    EXPECT_TRUE(hasFocus(app.next())) << "the Output step asks for nothing";
    press(Qt::Key_Space);
    ASSERT_EQ(app.step(), 2);
    EXPECT_TRUE(hasFocus(app.album())) << "and not at Settings, as Next is off";
    ASSERT_TRUE(QTest::qWaitFor([&] { return app.next()->isEnabled(); }, 60000));
    EXPECT_TRUE(hasFocus(app.album())) << "a lookup that ends leaves it there";
    goOn(app);
    EXPECT_TRUE(hasFocus(app.rip()));
    tabTo(app.back());
    press(Qt::Key_Space);
    EXPECT_TRUE(hasFocus(app.album()));
    tabTo(app.back());
    press(Qt::Key_Space);
    ASSERT_EQ(app.step(), 1);
    EXPECT_TRUE(hasFocus(app.back()));
    press(Qt::Key_Space);
    ASSERT_EQ(app.step(), 0);
    EXPECT_TRUE(hasFocus(drives(app)));
    tabTo(app.reset());
    press(Qt::Key_Space);
    EXPECT_TRUE(hasFocus(drives(app)));
}

TEST_F(KeyboardRoad, WhileARipRunsAKeyDoesNoHarm)
{
    HeldStart held;
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    loadDisc(app);
    app.outputPath()->setText(folder.path());
    activate(app);
    for (int step = 0; step < 3; ++step)
        goOn(app);
    press(Qt::Key_Space);
    ASSERT_TRUE(QTest::qWaitFor([&] { return held.gate.isHolding(); }, 60000));
    EXPECT_TRUE(hasFocus(log(app)));
    press(Qt::Key_Space);
    press(Qt::Key_Return);
    EXPECT_EQ(app.step(), 3);

    bool done = false;
    const DialogWatcher watcher([&done](QDialog* dialog) {
        QTest::keyClick(dialog, Qt::Key_Return);
        done = true;
    });
    held.gate.open();
    ASSERT_TRUE(QTest::qWaitFor([&] { return done; }, 60000));
    activate(app);
    ASSERT_TRUE(hasFocus(app.next()));
    goOn(app);
    tabTo(app.back());
    press(Qt::Key_Space);
    ASSERT_EQ(app.step(), 3);
    EXPECT_TRUE(hasFocus(log(app))) << "with RIP START and Next both off";
}

TEST_F(KeyboardRoad, ARipThatEndsWhileTheUserIsElsewhereTakesNoFocus)
{
    HeldStart held;
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    loadDisc(app);
    app.outputPath()->setText(folder.path());
    activate(app);
    for (int step = 0; step < 3; ++step)
        goOn(app);
    press(Qt::Key_Space);
    ASSERT_TRUE(QTest::qWaitFor([&] { return held.gate.isHolding(); }, 60000));
    tabTo(app.back());
    press(Qt::Key_Space);
    tabTo(app.artist());

    bool done = false;
    const DialogWatcher watcher([&done](QDialog* dialog) {
        QTest::keyClick(dialog, Qt::Key_Return);
        done = true;
    });
    held.gate.open();
    ASSERT_TRUE(QTest::qWaitFor([&] { return done; }, 60000));
    activate(app);
    EXPECT_TRUE(hasFocus(app.artist()));
}
