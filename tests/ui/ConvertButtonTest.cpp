#include "ui/WindowDriver.h"

#include "convert/ConvertDialog.h"
#include "support/DiscMaker.h"

#include <QApplication>
#include <QComboBox>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

class ConvertButton : public ::testing::Test {
protected:
    void SetUp() override { QSettings().clear(); }

    static QList<ConvertDialog*> dialogs(WindowDriver& app)
    {
        return app.window().findChildren<ConvertDialog*>(QString(), Qt::FindDirectChildrenOnly);
    }
};

} // namespace

TEST_F(ConvertButton, EachClickShowsANewModalDialogWithoutWaiting)
{
    WindowDriver app(2);
    for (int opening = 1; opening <= 2; ++opening) {
        WindowDriver::click(app.find<QPushButton>("convertBtn"));
        ASSERT_EQ(dialogs(app).size(), opening);
        ConvertDialog* shown = dialogs(app).last();
        EXPECT_TRUE(shown->isVisible());
        EXPECT_TRUE(shown->isModal());
        EXPECT_EQ(QApplication::activeModalWidget(), shown);
        QTest::keyClick(shown, Qt::Key_Escape);
        EXPECT_FALSE(shown->isVisible());
    }
}

TEST_F(ConvertButton, TheDialogTakesTheLookOfTheWindow)
{
    WindowDriver app(2);
    WindowDriver::click(app.find<QPushButton>("convertBtn"));
    ConvertDialog* shown = dialogs(app).value(0);
    ASSERT_NE(shown, nullptr);
    EXPECT_TRUE(shown->styleSheet().isEmpty());
    EXPECT_EQ(shown->grab().toImage().pixel(2, 2), 0xff0a0a0f);
    const auto* combo = shown->findChild<QComboBox*>();
    EXPECT_EQ(combo->palette().color(QPalette::Text), QColor(0x4d, 0xb8, 0xff));
}

TEST_F(ConvertButton, ItIsReachedOnEveryStep)
{
    WindowDriver app(2);
    for (int step = 0; step <= 3; ++step) {
        app.advanceTo(step);
        WindowDriver::click(app.find<QPushButton>("convertBtn"));
        ASSERT_EQ(dialogs(app).size(), step + 1);
        dialogs(app).last()->reject();
    }
}

TEST_F(ConvertButton, TheWindowMayGoInTheMiddleOfARun)
{
    QTemporaryDir place;
    const QString source = place.path() + QStringLiteral("/Album");
    ASSERT_TRUE(QDir().mkpath(source));
    for (const char* name : {"1.wav", "2.wav", "3.wav"})
        writeFile(source, QLatin1String(name), wrapInWave(makeAudio(1, 1)));
    WindowDriver app(2);
    WindowDriver::click(app.find<QPushButton>("convertBtn"));
    QDialog* shown = dialogs(app).value(0);
    ASSERT_NE(shown, nullptr);
    const auto fields = shown->findChildren<QLineEdit*>(QString(), Qt::FindDirectChildrenOnly);
    fields[0]->setText(source);
    fields[1]->setText(place.path() + QStringLiteral("/Out"));
    QTimer::singleShot(0, qApp, [&app] { app.destroyWindow(); });
    WindowDriver::click(shown->findChildren<QPushButton*>().last());
    EXPECT_TRUE(QDir(place.path() + QStringLiteral("/Out")).isEmpty());
    EXPECT_EQ(QDir(source).entryList(QDir::Files).size(), 3);
}
