// Texts that nobody planned for: far too long ones, and ones that look like markup.

#include "ui/SettingsView.h"
#include "ui/WindowDriver.h"

#include "base/Settings.h"
#include "support/DiscMaker.h"
#include "ui/ElidedLabel.h"
#include "ui/PageArea.h"

#include <QProgressBar>
#include <QRadioButton>
#include <QScrollBar>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {

class LongText : public ::testing::Test {
protected:
    void SetUp() override { QSettings().clear(); }

    QString makeCue(const QString& title)
    {
        ImageDescription image;
        image.tracks = {{0, title}, {30, title}};
        return writeImage(folder.path(), image, makeAudio(60, 1));
    }

    static bool scrollsSideways(WindowDriver& app, int step)
    {
        return static_cast<PageArea*>(app.pageAt(step))->horizontalScrollBar()->maximum() > 0;
    }

    /// Expects a table of three columns to lie in the page, and its middle column
    /// to have what the others leave.
    static void expectFitting(WindowDriver& app, QTableWidget* table, int first, int last)
    {
        const int margins = 2 * 40;
        EXPECT_EQ(table->width(), app.window().width() - margins);
        EXPECT_EQ(table->columnWidth(0), first);
        EXPECT_EQ(table->columnWidth(2), last);
        EXPECT_EQ(table->columnWidth(1), table->viewport()->width() - first - last);
    }

    QTemporaryDir folder;
};

} // namespace

TEST_F(LongText, TitlesOfThreeHundredCharactersKeepTheWidths)
{
    constexpr int length = 300;
    const QString words = QStringLiteral("Many") + QStringLiteral(" word").repeated(length / 5);
    for (const QString& title : {QString(length, QLatin1Char('W')), words}) {
        WindowDriver app(2);
        const QSize usual(1100, 680);
        ASSERT_EQ(app.window().size(), usual);
        app.outputPath()->setText(folder.path());
        app.pickCue(makeCue(title));
        app.advanceTo(1);
        app.onPage<QRadioButton>(1, "fmtRadio", 1)->click();
        app.advanceTo(2);
        QCoreApplication::processEvents();
        expectFitting(app, app.tracks(), 40, 70);
        app.advanceTo(3);

        auto* label = app.onPage<QLabel>(3, "progressLabel");
        auto* pane = app.onPage<QWidget>(3, "rightPane");
        label->setText(QStringLiteral("Track 1/2: ") + title);
        QCoreApplication::processEvents();
        EXPECT_EQ(pane->width(), 280);
        for (QWidget* inside : {static_cast<QWidget*>(label), static_cast<QWidget*>(app.rip()),
                                app.onPage<QWidget>(3, "statCard", 1)})
            EXPECT_TRUE(pane->rect().contains(QRect(inside->mapTo(pane, QPoint(0, 0)), inside->size())));

        ASSERT_FALSE(app.runRip().isEmpty());
        app.advanceTo(4);
        ASSERT_EQ(app.step(), 4);
        auto* bar = app.onPage<QProgressBar>(4, "ripProgress");
        ASSERT_TRUE(QTest::qWaitFor([&] { return bar->value() == 100; }, 60000));
        ASSERT_EQ(app.cell(app.verdicts(), 0, 1), title);
        expectFitting(app, app.verdicts(), 52, 120);
        for (int step = 0; step <= 4; ++step)
            EXPECT_FALSE(scrollsSideways(app, step)) << step;
        EXPECT_EQ(app.window().size(), usual);
    }
}

TEST_F(LongText, ALongNamingRuleKeepsTheWidthOfTheOutputPage)
{
    const QString rule = QStringLiteral("{artist} {album} {track} ").repeated(20) + QStringLiteral("{title}");
    QSettings().setValue(QLatin1String(settings::namingRule), rule);
    for (const int language : {1, 2}) {
        WindowDriver app(language);
        app.advanceTo(1);
        app.window().resize(app.window().minimumSize());
        QCoreApplication::processEvents();
        EXPECT_FALSE(scrollsSideways(app, 1));
        auto* preview = dynamic_cast<ElidedLabel*>(app.onPage<QLabel>(1, "previewLabel"));
        ASSERT_NE(preview, nullptr);
        EXPECT_LT(preview->width(), app.window().width());

        const QStringList whole = preview->text().split(QLatin1Char('\n'));
        const QStringList shown = preview->shownText().split(QLatin1Char('\n'));
        ASSERT_EQ(shown.size(), whole.size());
        EXPECT_EQ(whole[2].count(QStringLiteral(" 01 ")), 20) << "the text itself is whole";
        for (const QString& line : shown)
            EXPECT_LE(preview->fontMetrics().horizontalAdvance(line), preview->width());
        EXPECT_TRUE(shown[2].startsWith(QStringLiteral("        ├─ "))) << shown[2].toStdString();
        EXPECT_TRUE(shown[2].contains(QChar(0x2026))) << shown[2].toStdString();
        EXPECT_TRUE(shown[2].endsWith(QStringLiteral(".flac"))) << shown[2].toStdString();
        EXPECT_EQ(shown[1], whole[1]) << "what fits is shown whole";
    }
}

// Qt takes a text for markup when there is a tag in its first line.
TEST_F(LongText, MarkupInATextIsShownAsItIs)
{
    const QString loud = QStringLiteral("<b>Loud</b>");
    WindowDriver app(2);
    for (QLabel* label : {app.onPage<QLabel>(1, "previewLabel"), app.onPage<QLabel>(3, "progressLabel"),
                          app.onPage<QLabel>(4, "verifyResult"), app.onPage<QLabel>(4, "verifyDetail")}) {
        label->setWordWrap(false);
        label->setText(loud);
        EXPECT_GE(label->sizeHint().width(), label->fontMetrics().horizontalAdvance(loud))
            << label->objectName().toStdString();
    }
    EXPECT_TRUE(withSettings(app, [&](const SettingsView& view) {
        auto* drive = view.at<QLabel>("progressLabel", 0);
        drive->setWordWrap(false);
        drive->setText(loud);
        EXPECT_GE(drive->sizeHint().width(), drive->fontMetrics().horizontalAdvance(loud));
    }));
}
