// The margins, spacings, sizes and stretches of the bars, pages and tabs.

#include "ui/SettingsView.h"
#include "ui/WindowDriver.h"

#include "ui/LogViewer.h"
#include "ui/SectorMap.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHeaderView>
#include <QProgressBar>
#include <QRadioButton>
#include <QScrollArea>
#include <QSettings>
#include <QSpinBox>
#include <QStackedWidget>
#include <QTabWidget>
#include <QTextEdit>

#include <gtest/gtest.h>

namespace {

/// A box of widgets as it is laid out.
struct Frame {
    QMargins margins;
    int spacing = 0;
    bool operator==(const Frame&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Frame& frame)
{
    return out << frame.margins.left() << ' ' << frame.margins.top() << ' ' << frame.margins.right() << ' '
               << frame.margins.bottom() << ", spacing " << frame.spacing;
}

Frame frameOf(const QWidget* widget)
{
    return {widget->layout()->contentsMargins(), widget->layout()->spacing()};
}

QMargins marginsOf(const QWidget* widget)
{
    return widget->layout()->contentsMargins();
}

/// The layout in which a widget stands, and its place there.
QLayout* layoutAround(QLayout* layout, QWidget* widget)
{
    for (int place = 0; place < layout->count(); ++place) {
        QLayoutItem* item = layout->itemAt(place);
        if (item->widget() == widget)
            return layout;
        if (item->layout()) {
            if (QLayout* found = layoutAround(item->layout(), widget))
                return found;
        }
    }
    return nullptr;
}
QLayout* layoutAround(QWidget* widget)
{
    return layoutAround(widget->parentWidget()->layout(), widget);
}

/// The stretch of a widget in its box.
int stretchOf(QWidget* widget)
{
    const auto* box = qobject_cast<QBoxLayout*>(layoutAround(widget));
    return box ? box->stretch(box->indexOf(widget)) : -1;
}

bool endsInStretch(const QLayout* layout)
{
    return layout->itemAt(layout->count() - 1)->spacerItem() != nullptr;
}

const QMargins none(0, 0, 0, 0);
const Frame textPage20{{40, 32, 40, 32}, 20};
const Frame textPage16{{40, 32, 40, 32}, 16};

class Layout : public ::testing::Test {
protected:
    Layout() { QSettings().clear(); }

    static QWidget* content(WindowDriver& app, int step)
    {
        return qobject_cast<QScrollArea*>(app.pageAt(step))->widget();
    }
};

} // namespace

TEST_F(Layout, OfTheFrame)
{
    WindowDriver app;
    EXPECT_EQ(frameOf(app.window().centralWidget()), (Frame{none, 0}));
    EXPECT_EQ(stretchOf(app.window().findChild<QStackedWidget*>()), 1);
    const QStringList order{"titleBar", "stepBar", "hline", QString(), "navBar"};
    const QLayout* column = app.window().centralWidget()->layout();
    ASSERT_EQ(column->count(), order.size());
    for (int place = 0; place < order.size(); ++place) {
        if (!order[place].isEmpty()) {
            EXPECT_EQ(column->itemAt(place)->widget()->objectName(), order[place]);
        }
    }
    EXPECT_EQ(marginsOf(app.find<QWidget>("titleBar")), QMargins(24, 0, 16, 0));
    EXPECT_EQ(app.find<QPushButton>("settingsBtn")->height(), 28);
    EXPECT_EQ(app.find<QPushButton>("convertBtn")->height(), 28);
    EXPECT_EQ(frameOf(app.find<QWidget>("stepBar")), (Frame{{24, 0, 24, 0}, 0}));
    for (int step = 0; step < 5; ++step) {
        EXPECT_EQ(stretchOf(app.find<QLabel>("stepLabel", step)), 1);
        EXPECT_EQ(app.find<QLabel>("stepLabel", step)->alignment(), Qt::AlignCenter);
    }
    for (int gap = 0; gap < 4; ++gap) {
        EXPECT_EQ(stretchOf(app.find<QLabel>("stepSep", gap)), 0);
        EXPECT_EQ(app.find<QLabel>("stepSep", gap)->text(), QStringLiteral("›"));
        EXPECT_EQ(app.find<QLabel>("stepSep", gap)->alignment(), Qt::AlignCenter);
    }
    EXPECT_EQ(frameOf(app.find<QWidget>("navBar")), (Frame{{24, 0, 24, 0}, 12}));
    EXPECT_EQ(app.back()->size(), QSize(110, 34));
    EXPECT_EQ(app.next()->size(), QSize(110, 34));
    EXPECT_EQ(app.find<QFrame>("hline")->frameShape(), QFrame::HLine);
}

TEST_F(Layout, OfTheSourcePage)
{
    WindowDriver app;
    EXPECT_EQ(frameOf(content(app, 0)), textPage20);
    EXPECT_TRUE(endsInStretch(content(app, 0)->layout()));
    EXPECT_EQ(stretchOf(app.onPage<QComboBox>(0, "driveCombo")), 1);
    EXPECT_EQ(stretchOf(app.cuePath()), 1);
    EXPECT_EQ(stretchOf(app.audioPath()), 1);
    const QList<int> widths{36, 90, 90};
    for (int place = 0; place < widths.size(); ++place) {
        const auto* button = app.onPage<QPushButton>(0, "browseBtn", place);
        EXPECT_EQ(button->minimumWidth(), widths[place]);
        EXPECT_EQ(button->maximumWidth(), widths[place]);
    }
    EXPECT_EQ(app.onPage<QPushButton>(0, "browseBtn", 1)->text(), QStringLiteral("Browse..."));
    EXPECT_EQ(app.onPage<QPushButton>(0, "browseBtn", 2)->text(), QStringLiteral("Browse..."));
    EXPECT_EQ(app.onPage<QGroupBox>(0, "sourceGroup", 0)->findChild<QLabel*>()->text(),
              QStringLiteral("Drive:"));
}

TEST_F(Layout, OfTheOutputPage)
{
    WindowDriver app;
    EXPECT_EQ(frameOf(content(app, 1)), textPage20);
    EXPECT_TRUE(endsInStretch(content(app, 1)->layout()));
    EXPECT_EQ(stretchOf(app.outputPath()), 1);
    EXPECT_EQ(app.onPage<QPushButton>(1, "browseBtn")->minimumWidth(), 80);
    EXPECT_EQ(app.onPage<QPushButton>(1, "browseBtn")->maximumWidth(), 80);
    EXPECT_EQ(app.onPage<QGroupBox>(1, "sourceGroup", 1)->layout()->spacing(), 10);
    for (int place = 0; place < 3; ++place)
        EXPECT_TRUE(app.onPage<QRadioButton>(1, "fmtRadio", place)->isEnabled());
}

TEST_F(Layout, OfTheMetadataPage)
{
    WindowDriver app;
    QWidget* page = content(app, 2);
    EXPECT_EQ(frameOf(page), textPage16);
    EXPECT_TRUE(endsInStretch(page->layout()));
    const QLayout* columns = page->layout()->itemAt(1)->layout();
    ASSERT_NE(columns, nullptr);
    EXPECT_EQ(columns->spacing(), 24);
    EXPECT_EQ(static_cast<const QBoxLayout*>(columns)->stretch(1), 1);
    EXPECT_EQ(columns->itemAt(1)->layout()->spacing(), 10);
    EXPECT_TRUE(endsInStretch(columns->itemAt(0)->layout()));
    for (QLineEdit* field : {app.album(), app.artist(), app.year()})
        EXPECT_EQ(stretchOf(field), 1);
    for (int place = 0; place < 4; ++place) {
        EXPECT_EQ(app.onPage<QLabel>(2, "formLabel", place)->minimumWidth(), 80);
        EXPECT_EQ(app.onPage<QLabel>(2, "formLabel", place)->maximumWidth(), 80);
    }
    EXPECT_TRUE(endsInStretch(layoutAround(app.onPage<QSpinBox>(2, "formEdit"))));
    const auto* art = app.onPage<QLabel>(2, "artLabel");
    EXPECT_EQ(art->minimumSize(), QSize(140, 140));
    EXPECT_EQ(art->maximumSize(), QSize(140, 140));
    EXPECT_EQ(art->alignment(), Qt::AlignCenter);
    EXPECT_EQ(app.tracks()->minimumHeight(), 180);
    EXPECT_EQ(app.tracks()->maximumHeight(), 180);
    EXPECT_EQ(app.tracks()->rowCount(), 0);
    EXPECT_EQ(app.tracks()->columnCount(), 3);
    EXPECT_EQ(app.tracks()->horizontalHeader()->sectionResizeMode(1), QHeaderView::Stretch);
    EXPECT_NE(app.tracks()->editTriggers(), QAbstractItemView::NoEditTriggers);
}

TEST_F(Layout, OfTheRipPage)
{
    WindowDriver app;
    QWidget* left = app.onPage<QWidget>(3, "leftPane");
    QWidget* right = app.onPage<QWidget>(3, "rightPane");
    EXPECT_EQ(frameOf(content(app, 3)), (Frame{none, 0}));
    EXPECT_EQ(stretchOf(left), 1);
    EXPECT_EQ(frameOf(left), (Frame{{24, 20, 16, 20}, 12}));
    auto* log = left->findChild<LogViewer*>();
    EXPECT_EQ(stretchOf(log), 1);
    EXPECT_EQ(marginsOf(log), none);
    EXPECT_TRUE(log->findChild<QTextEdit*>()->isReadOnly());
    EXPECT_EQ(log->findChild<QTextEdit*>()->font().pointSize(), 9);
    EXPECT_EQ(left->findChild<SectorMap*>()->minimumHeight(), 200);

    EXPECT_EQ(frameOf(right), (Frame{{12, 20, 20, 20}, 12}));
    EXPECT_EQ(right->minimumWidth(), 280);
    EXPECT_EQ(right->maximumWidth(), 280);
    auto* grid = qobject_cast<QGridLayout*>(layoutAround(app.onPage<QWidget>(3, "statCard")));
    ASSERT_NE(grid, nullptr);
    EXPECT_EQ(grid->horizontalSpacing(), 6);
    EXPECT_EQ(grid->verticalSpacing(), 6);
    for (int card = 0; card < 4; ++card) {
        QWidget* shown = app.onPage<QWidget>(3, "statCard", card);
        EXPECT_EQ(frameOf(shown), (Frame{{10, 8, 10, 8}, 2}));
        EXPECT_EQ(grid->itemAtPosition(card / 2, card % 2)->widget(), shown);
    }
    const auto* bar = app.onPage<QProgressBar>(3, "ripProgress");
    EXPECT_EQ(bar->minimum(), 0);
    EXPECT_EQ(bar->maximum(), 100);
    EXPECT_EQ(bar->value(), 0);
    EXPECT_FALSE(bar->isTextVisible());
    EXPECT_EQ(bar->minimumHeight(), 4);
    EXPECT_EQ(bar->maximumHeight(), 4);
    EXPECT_EQ(app.rip()->minimumHeight(), 40);
    EXPECT_EQ(app.rip()->maximumHeight(), 40);
    EXPECT_NE(right->layout()->itemAt(right->layout()->indexOf(app.rip()) - 1)->spacerItem(), nullptr);
}

TEST_F(Layout, OfTheVerifyPage)
{
    WindowDriver app;
    EXPECT_EQ(frameOf(content(app, 4)), textPage20);
    EXPECT_TRUE(endsInStretch(content(app, 4)->layout()));
    EXPECT_EQ(frameOf(app.onPage<QWidget>(4, "verifyBox")), (Frame{{24, 24, 24, 24}, 12}));
    const auto* bar = app.onPage<QProgressBar>(4, "ripProgress");
    EXPECT_EQ(bar->minimum(), 0);
    EXPECT_EQ(bar->maximum(), 100);
    EXPECT_EQ(bar->value(), 0);
    EXPECT_EQ(bar->minimumHeight(), 4);
    EXPECT_EQ(bar->maximumHeight(), 4);
    for (const char* name : {"verifyResult", "verifyDetail"})
        EXPECT_EQ(app.onPage<QLabel>(4, name)->alignment(), Qt::AlignCenter) << name;
    EXPECT_TRUE(app.onPage<QLabel>(4, "verifyDetail")->wordWrap());
    EXPECT_TRUE(app.onPage<QLabel>(4, "verifyDetail")->text().isEmpty());
    const auto* table = app.verdicts();
    EXPECT_EQ(table->rowCount(), 0);
    EXPECT_TRUE(table->verticalHeader()->isHidden());
    EXPECT_EQ(table->horizontalHeader()->sectionResizeMode(1), QHeaderView::Stretch);
    EXPECT_EQ(table->horizontalHeaderItem(0)->text(), QStringLiteral("Track"));
    EXPECT_EQ(table->horizontalHeaderItem(1)->text(), QStringLiteral("Title"));
}

TEST_F(Layout, OfTheSettingsTab)
{
    WindowDriver app;
    EXPECT_TRUE(withSettings(app, [](const SettingsView& view) {
        auto* tabs = view.at<QTabWidget>("settingsTabs");
        EXPECT_EQ(frameOf(view.dialog), (Frame{none, 0}));
        EXPECT_EQ(stretchOf(tabs), 1);
        EXPECT_EQ(frameOf(tabs->widget(0)), (Frame{{24, 20, 24, 20}, 16}));
        EXPECT_TRUE(endsInStretch(tabs->widget(0)->layout()));
        const auto groups = view.dialog->findChildren<QGroupBox*>(QStringLiteral("sourceGroup"));
        ASSERT_EQ(groups.size(), 3);
        for (const QGroupBox* group : groups) {
            const auto* grid = qobject_cast<QGridLayout*>(group->layout());
            ASSERT_NE(grid, nullptr);
            EXPECT_EQ(grid->horizontalSpacing(), 10) << group->title().toStdString();
            EXPECT_EQ(grid->verticalSpacing(), 10) << group->title().toStdString();
            EXPECT_EQ(grid->columnMinimumWidth(0), 160) << group->title().toStdString();
        }
        for (const int place : {0, 1, 2})
            EXPECT_TRUE(view.at<QLabel>("progressLabel", place)->wordWrap() || place == 2);
        EXPECT_TRUE(view.at<QLabel>("progressLabel", 1)->openExternalLinks());
        EXPECT_EQ(view.at<QPushButton>("browseBtn")->text(), QStringLiteral("..."));
        QWidget* bar = view.at<QWidget>("navBar");
        EXPECT_EQ(marginsOf(bar), QMargins(20, 0, 20, 0));
        ASSERT_EQ(bar->layout()->count(), 3);
        EXPECT_NE(bar->layout()->itemAt(0)->spacerItem(), nullptr);
        EXPECT_EQ(bar->layout()->itemAt(1)->widget(), view.cancel());
        EXPECT_EQ(bar->layout()->itemAt(2)->widget(), view.ok());
    }));
}

// Labels in the first column, and what they name in the second.
TEST_F(Layout, OfTheSettingsGrids)
{
    WindowDriver app;
    EXPECT_TRUE(withSettings(app, [](const SettingsView& view) {
        const auto groups = view.dialog->findChildren<QGroupBox*>(QStringLiteral("sourceGroup"));
        const auto gridAt = [&groups](int group) {
            return qobject_cast<QGridLayout*>(groups[group]->layout());
        };
        const auto widgetAt = [&gridAt](int group, int row, int column) {
            QLayoutItem* item = gridAt(group)->itemAtPosition(row, column);
            return item ? item->widget() : nullptr;
        };
        const auto expectRow = [&](int group, int row, int label, QWidget* field) {
            QLayoutItem* second = gridAt(group)->itemAtPosition(row, 1);
            ASSERT_NE(second, nullptr) << group << ' ' << row;
            EXPECT_EQ(widgetAt(group, row, 0), view.at<QLabel>("formLabel", label)) << group << ' ' << row;
            EXPECT_EQ(stretchOf(field), 1);
            EXPECT_EQ(second->layout(), layoutAround(field)) << group << ' ' << row;
        };
        expectRow(0, 0, 0, view.retries());
        expectRow(0, 1, 1, view.offset());
        EXPECT_EQ(widgetAt(0, 2, 0), view.at<QLabel>("formLabel", 2));
        EXPECT_EQ(widgetAt(0, 2, 1), view.at<QLabel>("progressLabel", 0));
        EXPECT_EQ(widgetAt(0, 3, 1), view.at<QLabel>("progressLabel", 1));
        expectRow(1, 0, 3, view.folder());
        EXPECT_EQ(layoutAround(view.at<QPushButton>("browseBtn")), layoutAround(view.folder()));
        expectRow(1, 1, 4, view.rule());
        EXPECT_EQ(widgetAt(1, 2, 1), view.at<QLabel>("progressLabel", 2));
        expectRow(2, 0, 5, view.language());
    }));
}

TEST_F(Layout, OfTheAboutTab)
{
    WindowDriver app;
    EXPECT_TRUE(withSettings(app, [](const SettingsView& view) {
        QWidget* page = view.at<QTabWidget>("settingsTabs")->widget(1);
        EXPECT_EQ(frameOf(page), (Frame{{40, 28, 40, 24}, 12}));
        EXPECT_EQ(page->layout()->alignment(), Qt::AlignTop);
        const QLayout* column = page->layout();
        EXPECT_TRUE(endsInStretch(column));
        const QStringList order{"aboutIcon", "aboutTitle", "aboutVer",   "hline",
                                "aboutDesc", "hline",      "aboutAuthor"};
        for (int place = 0; place < order.size(); ++place)
            EXPECT_EQ(column->itemAt(place)->widget()->objectName(), order[place]) << place;
        EXPECT_EQ(column->itemAt(0)->alignment(), Qt::AlignHCenter);
        for (const int place : {1, 2, 4, 6, 7})
            EXPECT_EQ(qobject_cast<QLabel*>(column->itemAt(place)->widget())->alignment(), Qt::AlignCenter)
                << place;
    }));
}
