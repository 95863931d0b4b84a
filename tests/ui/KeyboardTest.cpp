// The wizard without a mouse, and what a screen reader has to go by.

#include "ui/PageArea.h"
#include "ui/SettingsView.h"
#include "ui/WindowDriver.h"

#include "support/DiscMaker.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QSettings>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTextEdit>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include <utility>

namespace {

bool isControl(const QWidget* widget)
{
    return qobject_cast<const QAbstractButton*>(widget) || qobject_cast<const QLineEdit*>(widget)
           || qobject_cast<const QComboBox*>(widget) || qobject_cast<const QAbstractSpinBox*>(widget)
           || qobject_cast<const QTableWidget*>(widget) || qobject_cast<const QTextEdit*>(widget);
}

class Keyboard : public ::testing::Test {
protected:
    void SetUp() override { QSettings().clear(); }

    static QString describe(const QWidget* widget)
    {
        return QStringLiteral("%1 \"%2\"")
            .arg(QLatin1String(widget->metaObject()->className()), widget->objectName());
    }

    static void activate(QWidget& window)
    {
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    static void activate(WindowDriver& app) { activate(app.window()); }

    /// What Tab comes by, once around, from where the focus is.
    static QList<QWidget*> tabRound(QWidget& window)
    {
        QList<QWidget*> round;
        constexpr int limit = 60;
        for (int i = 0; i < limit; ++i) {
            QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : &window, Qt::Key_Tab);
            QWidget* reached = QApplication::focusWidget();
            if (!reached || round.contains(reached))
                return round;
            round.append(reached);
        }
        ADD_FAILURE() << "Tab never comes back";
        return round;
    }

    /// Expects each stop of Tab to look other than without the focus.
    static void expectEachStopSeen(QWidget& window, int atLeast)
    {
        const QList<QWidget*> stops = tabRound(window);
        EXPECT_GE(stops.size(), atLeast);
        for (qsizetype i = 0; i < stops.size(); ++i) {
            stops[i]->setFocus(Qt::TabFocusReason);
            ASSERT_TRUE(stops[i]->hasFocus()) << describe(stops[i]).toStdString();
            const QImage with = stops[i]->grab().toImage();
            stops[(i + 1) % stops.size()]->setFocus(Qt::TabFocusReason);
            EXPECT_NE(stops[i]->grab().toImage(), with) << describe(stops[i]).toStdString();
        }
    }

    static QPoint place(MainWindow& window, QWidget* widget) { return widget->mapTo(&window, QPoint(0, 0)); }

    QTemporaryDir folder;
};

} // namespace

TEST_F(Keyboard, TabGoesThroughEachPageAsItIsRead)
{
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    activate(app);
    app.outputPath()->setText(folder.path());
    for (int step = 0; step < 3; ++step) {
        app.advanceTo(step);
        app.find<QPushButton>("settingsBtn")->setFocus();
        QList<QWidget*> round = tabRound(app.window());
        ASSERT_GE(round.size(), 4) << "step " << step;
        EXPECT_EQ(round.takeLast()->objectName(), QStringLiteral("settingsBtn"));
        QPoint before(-1, -1);
        for (QWidget* widget : std::as_const(round)) {
            EXPECT_TRUE(isControl(widget)) << "step " << step << ": " << describe(widget).toStdString();
            const QPoint here = place(app.window(), widget);
            constexpr int sameRow = 20;
            EXPECT_TRUE(here.y() > before.y() - sameRow || here.x() > before.x())
                << "step " << step << ": " << describe(widget).toStdString();
            before = here;
        }
    }
}

TEST_F(Keyboard, EveryControlHasANameInBothLanguages)
{
    for (const int language : {1, 2}) {
        WindowDriver app(language, {QStringLiteral("/dev/sr0")});
        for (QWidget* widget : app.window().findChildren<QWidget*>()) {
            const bool partOfAnother = qobject_cast<QAbstractSpinBox*>(widget->parentWidget())
                                       || widget->objectName().startsWith(QStringLiteral("qt_"))
                                       || qobject_cast<QTableWidget*>(widget->parentWidget());
            if (!isControl(widget) || partOfAnother || widget->isHidden())
                continue;
            const auto* button = qobject_cast<QAbstractButton*>(widget);
            const bool speaksForItself = button && button->text().size() > 3;
            EXPECT_TRUE(speaksForItself || !widget->accessibleName().isEmpty())
                << describe(widget).toStdString();
        }
    }
}

// A trap for the keyboard otherwise: Tab would go from cell to cell.
TEST_F(Keyboard, TabLeavesTheTrackTable)
{
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    activate(app);
    app.shelf().audio = makeAudio(40, 1);
    app.shelf().tracks = {{0}, {20}};
    app.advanceTo(2);
    app.tracks()->setFocus();
    ASSERT_EQ(QApplication::focusWidget(), app.tracks());
    QTest::keyClick(app.tracks(), Qt::Key_Tab);
    EXPECT_NE(QApplication::focusWidget(), app.tracks());
}

TEST_F(Keyboard, TheFocusIsSeenOnEveryPage)
{
    ImageDescription image;
    image.tracks = {{0, QStringLiteral("One")}};
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    app.outputPath()->setText(folder.path());
    app.pickCue(writeImage(folder.path(), image, makeAudio(20, 1)));
    app.onPage<QComboBox>(0, "driveCombo")->setCurrentIndex(0);
    // Source: two buttons above, two for paths, refresh, combo, two paths, Reset, Next.
    const int stops[] = {10, 7, 11, 5, 5};
    for (int step = 0; step <= 4; ++step) {
        if (step == 4) {
            ASSERT_FALSE(app.runRip().isEmpty());
        }
        app.advanceTo(step);
        ASSERT_EQ(app.step(), step);
        activate(app);
        SCOPED_TRACE(step);
        expectEachStopSeen(app.window(), stops[step]);
    }
}

TEST_F(Keyboard, TheFocusIsSeenInBothDialogs)
{
    WindowDriver app(2);
    EXPECT_TRUE(withSettings(app, [](const SettingsView& view) {
        activate(*view.dialog);
        expectEachStopSeen(*view.dialog, 10); // the tabs, seven in the groups, Cancel and OK
        view.at<QTabWidget>("settingsTabs")->setCurrentIndex(1);
        expectEachStopSeen(*view.dialog, 4); // the tabs, the link, Cancel and OK
    }));
    WindowDriver::click(app.find<QPushButton>("convertBtn"));
    auto* dialog = app.window().findChildren<QDialog*>().constLast();
    activate(*dialog);
    expectEachStopSeen(*dialog, 6); // two paths with their buttons, the format, Convert
}

TEST_F(Keyboard, TheSettingsOpenWithAFocusThatIsSeen)
{
    WindowDriver app(2);
    EXPECT_TRUE(withSettings(app, [](const SettingsView& view) {
        activate(*view.dialog);
        QWidget* first = view.dialog->focusWidget();
        ASSERT_NE(first, nullptr);
        const QImage with = first->grab().toImage();
        view.ok()->setFocus();
        EXPECT_NE(first->grab().toImage(), with) << describe(first).toStdString();
    }));
}

TEST_F(Keyboard, TabScrollsToAFieldThatIsOutOfSight)
{
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    constexpr int fields = 20;
    QList<QLineEdit*> edits;
    for (int i = 0; i < fields; ++i) {
        edits << new QLineEdit;
        layout->addWidget(edits.constLast());
    }
    PageArea area(page);
    area.resize(200, 150);
    area.show();
    activate(area);
    edits.constFirst()->setFocus();
    for (int i = 1; i < fields; ++i) {
        QTest::keyClick(edits[i - 1], Qt::Key_Tab);
        EXPECT_TRUE(edits[i]->hasFocus());
        const QRect seen = area.viewport()->rect();
        EXPECT_TRUE(seen.contains(QRect(edits[i]->mapTo(area.viewport(), QPoint(0, 0)), edits[i]->size())))
            << i;
    }
}
