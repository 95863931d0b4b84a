#include "ui/WindowDriver.h"

#include "convert/ConvertDialog.h"
#include "support/DiscMaker.h"
#include "support/Language.h"

#include <QApplication>
#include <QComboBox>
#include <QFileInfo>
#include <QLabel>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

class ConvertButton : public ::testing::TestWithParam<int> {
protected:
    void SetUp() override { QSettings().clear(); }

    static QList<ConvertDialog*> dialogs(WindowDriver& app)
    {
        return app.window().findChildren<ConvertDialog*>(QString(), Qt::FindDirectChildrenOnly);
    }
};

INSTANTIATE_TEST_SUITE_P(Both, ConvertButton, bothLanguages, nameOfLanguage);

} // namespace

TEST_P(ConvertButton, EachClickShowsANewModalDialogWithoutWaiting)
{
    WindowDriver app(GetParam());
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

TEST_P(ConvertButton, TheDialogTakesTheLookOfTheWindow)
{
    WindowDriver app(GetParam());
    WindowDriver::click(app.find<QPushButton>("convertBtn"));
    ConvertDialog* shown = dialogs(app).value(0);
    ASSERT_NE(shown, nullptr);
    EXPECT_TRUE(shown->styleSheet().isEmpty());
    EXPECT_EQ(shown->grab().toImage().pixel(2, 2), 0xff0a0a0f);
    const auto* combo = shown->findChild<QComboBox*>();
    EXPECT_EQ(combo->palette().color(QPalette::Text), QColor(0x4d, 0xb8, 0xff));
}

TEST_P(ConvertButton, ItIsReachedOnEveryStep)
{
    WindowDriver app(GetParam());
    for (int step = 0; step <= 3; ++step) {
        app.advanceTo(step);
        WindowDriver::click(app.find<QPushButton>("convertBtn"));
        ASSERT_EQ(dialogs(app).size(), step + 1);
        dialogs(app).last()->reject();
    }
}

TEST_P(ConvertButton, TheWindowMayGoInTheMiddleOfARun)
{
    QTemporaryDir place;
    const QString source = place.path() + QStringLiteral("/Album");
    const QString output = place.path() + QStringLiteral("/Out");
    ASSERT_TRUE(QDir().mkpath(source));
    for (const char* name : {"1.wav", "2.wav", "3.wav"})
        writeFile(source, QLatin1String(name), wrapInWave(makeAudio(1, 1)));
    WindowDriver app(GetParam());
    WindowDriver::click(app.find<QPushButton>("convertBtn"));
    QDialog* shown = dialogs(app).value(0);
    ASSERT_NE(shown, nullptr);
    const auto fields = shown->findChildren<QLineEdit*>(QString(), Qt::FindDirectChildrenOnly);
    fields[0]->setText(source);
    fields[1]->setText(output);
    QString running;
    bool folderWasMade = false;
    QTimer moment;
    moment.setSingleShot(true);
    QObject::connect(&moment, &QTimer::timeout, [&] {
        running = shown->findChildren<QLabel*>().last()->text();
        folderWasMade = QFileInfo(output + QStringLiteral("/Album")).isDir();
        app.destroyWindow();
    });
    moment.start(0);
    WindowDriver::click(shown->findChildren<QPushButton*>().last());
    EXPECT_EQ(running, textIn(GetParam(), "変換中 (1/3): 1.wav", "Converting (1/3): 1.wav"));
    EXPECT_TRUE(folderWasMade);
    EXPECT_TRUE(QFileInfo(output).isDir());
    EXPECT_TRUE(QDir(output).isEmpty());
    EXPECT_EQ(QDir(source).entryList(QDir::Files).size(), 3);
}
