#include "ui/StyleSheet.h"

#include "ui/Resources.h"

#include <QCheckBox>
#include <QIcon>
#include <QImage>
#include <QMap>
#include <QPushButton>
#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

namespace {

constexpr char windowRules[] = R"(
QWidget, QMainWindow { background: #0a0a0f; color: #c0d8f0; font-family: "Segoe UI"; font-size: 9pt; }
QDialog { background: #0a0a0f; }
#titleBar, #stepBar { background: #070710; border-bottom: 1px solid #0d2a45; }
#navBar { background: #070710; border-top: 1px solid #0d2a45; }
#appTitle { color: #4db8ff; font-size: 10pt; letter-spacing: 3px; }
#verLabel { color: #1a3a5a; font-size: 8pt; margin-left: 10px; }
#stepLabel { color: #2a5a8a; font-size: 8pt; padding: 4px; }
#stepLabel[active="true"] { color: #4db8ff; font-weight: bold; border-bottom: 2px solid #4db8ff; }
#stepLabel[done="true"] { color: #1a5a9a; }
#stepSep { color: #0d2a45; font-size: 12pt; }
#hline { border: none; border-top: 1px solid #0d2a45; }
#backBtn { background: #07070f; color: #4a7aa0; border: 1px solid #0d2a45; border-radius: 3px; }
#backBtn:hover { background: #0a1a2e; color: #4db8ff; }
#nextBtn { background: #0d3a6a; color: #4db8ff; border: 1px solid #4db8ff; border-radius: 3px;
    letter-spacing: 1px; }
#nextBtn:hover { background: #1a5a9a; }
#stepHeading { color: #c0d8f0; font-size: 12pt; font-weight: bold; margin-bottom: 8px; }
#subLabel { color: #4a7aa0; font-size: 9pt; line-height: 1.6; }
#sourceGroup { color: #4a7aa0; border: 1px solid #0d2a45; border-radius: 5px; margin-top: 4px;
    padding: 8px; }
QGroupBox::title { color: #2a5a8a; subcontrol-origin: margin; left: 10px; padding: 0 4px; }
#driveCombo, QComboBox { background: #07070f; color: #4db8ff; border: 1px solid #0d2a45;
    border-radius: 3px; padding: 4px 10px; }
#driveCombo::drop-down { border: none; }
QComboBox::drop-down { border: none; }
#pathEdit, #formEdit { background: #07070f; color: #c0d8f0; border: 1px solid #0d2a45;
    border-radius: 3px; padding: 4px 8px; }
#browseBtn { background: #07070f; color: #4a7aa0; border: 1px solid #0d2a45; border-radius: 3px;
    padding: 4px 8px; }
#browseBtn:hover, #resetBtn:hover, #settingsBtn:hover { color: #4db8ff; border-color: #4db8ff; }
#resetBtn { background: #07070f; color: #4a7aa0; border: 1px solid #0d2a45; border-radius: 3px;
    padding: 6px 12px; font-size: 12px; }
#previewLabel { color: #2a5a8a; font-family: "Consolas"; font-size: 8pt; line-height: 1.8; }
#formLabel, #statLabel, #progressLabel { color: #2a5a8a; font-size: 8pt; }
#artLabel { background: #0a1a2e; border: 1px solid #1a4a7a; border-radius: 6px; color: #4db8ff;
    font-size: 32px; }
#sectionLabel { color: #2a5a8a; font-size: 8pt; letter-spacing: 2px; }
#trackTable { background: #07070f; border: 1px solid #0d2a45; border-radius: 4px;
    gridline-color: #0d1a2a; selection-background-color: #0a1a2e; }
#trackTable::item { padding: 4px 6px; color: #90b8d8; }
#trackTable::item:selected { color: #4db8ff; }
QHeaderView::section { background: #050510; color: #2a5a8a; border: none;
    border-bottom: 1px solid #0d2a45; padding: 4px 6px; font-size: 8pt; }
QRadioButton { color: #4a7aa0; spacing: 8px; }
QRadioButton::indicator { width: 13px; height: 13px; border: 1px solid #4a7aa0; border-radius: 7px;
    background: #07070f; }
QRadioButton::indicator:hover { border-color: #4db8ff; }
QRadioButton::indicator:checked { border: 1px solid #4db8ff;
    background: qradialgradient(cx: 0.5, cy: 0.5, radius: 0.5, fx: 0.5, fy: 0.5, stop: 0 #4db8ff, stop: 0.5 #4db8ff, stop: 0.6 #07070f, stop: 1 #07070f); }
#leftPane { background: #0a0a0f; }
#rightPane { background: #070710; border-left: 1px solid #0d2a45; }
#statCard { background: #050510; border: 1px solid #0d2a45; border-radius: 4px; }
#statValue { color: #4db8ff; font-size: 15pt; font-weight: bold; }
#ripProgress { background: #0d2a45; border: none; border-radius: 2px; }
#ripProgress::chunk { background: #4db8ff; border-radius: 2px; }
#ripBtn { background: #0d3a6a; color: #4db8ff; border: 1px solid #4db8ff; border-radius: 3px;
    font-size: 10pt; letter-spacing: 1px; }
#ripBtn:hover { background: #1a5a9a; }
#ripBtn:disabled { background: #050510; color: #1a3a5a; border-color: #0d2a45; }
#settingsBtn, #convertBtn { background: #07070f; color: #2a5a8a; border: 1px solid #0d2a45;
    border-radius: 3px; padding: 4px 12px; font-size: 8pt; }
#convertBtn:hover { color: #ff8c00; border-color: #ff8c00; }
#settingsSpin { background: #07070f; color: #4db8ff; border: 1px solid #0d2a45; border-radius: 3px;
    padding: 3px 6px; }
QSpinBox::up-button, QSpinBox::down-button { background: #0d2a45; border: none; width: 16px; }
QCheckBox { color: #4a7aa0; spacing: 8px; }
QCheckBox::indicator { width: 14px; height: 14px; border: 1px solid #4a7aa0; border-radius: 3px;
    background: #07070f; }
QCheckBox::indicator:hover { border-color: #4db8ff; }
QCheckBox::indicator:checked { background: #4db8ff; border-color: #4db8ff; image: url(:/check.png); }
QCheckBox::indicator:disabled { border-color: #1a3a5a; }
#verifyResult { color: #4db8ff; font-size: 18pt; font-weight: bold; }
#verifyDetail { color: #4a7aa0; font-size: 9pt; }
QTextEdit { background: #050510; color: #4a7aa0; border: none; font-family: "Consolas"; font-size: 9pt; }
#driveInfoVal { color: #c0d8f0; font-size: 9pt; }
#settingsCheck { color: #4a7aa0; }
)";

constexpr char settingsRules[] = R"(
QTabWidget::pane { border: none; background: #0a0a0f; }
QTabBar::tab { background: #070710; color: #4a7aa0; padding: 8px 24px; border: none;
    border-bottom: 2px solid transparent; }
QTabBar::tab:selected { color: #4db8ff; border-bottom: 2px solid #4db8ff; background: #0a0a0f; }
#aboutIcon { background: transparent; border: none; }
#aboutTitle { color: #4db8ff; font-size: 14pt; font-weight: bold; }
#aboutVer { color: #2a5a8a; font-size: 9pt; }
#aboutDesc { color: #4a7aa0; font-size: 9pt; line-height: 1.8; }
#aboutAuthor { color: #2a5a8a; font-size: 8pt; }
)";

/// What a sheet says of each selector: its properties with their values, without
/// regard to their order and to blanks.
QMap<QString, QMap<QString, QString>> rulesOf(const QString& sheet)
{
    QMap<QString, QMap<QString, QString>> rules;
    static const QRegularExpression rule(QStringLiteral(R"(([^{}]+)\{([^{}]*)\})"));
    for (const auto& match : rule.globalMatch(sheet)) {
        for (const QString& selector : match.captured(1).split(QLatin1Char(','))) {
            for (const QString& line : match.captured(2).split(QLatin1Char(';'))) {
                const auto colon = line.indexOf(QLatin1Char(':'));
                if (colon > 0)
                    rules[selector.trimmed()][line.left(colon).trimmed()] = line.mid(colon + 1).simplified();
            }
        }
    }
    return rules;
}

void expectRules(const QString& expectedSheet, const QString& sheet)
{
    const auto expected = rulesOf(expectedSheet);
    const auto found = rulesOf(sheet);
    ASSERT_FALSE(expected.isEmpty());
    for (auto rule = expected.cbegin(); rule != expected.cend(); ++rule) {
        const auto has = found.value(rule.key());
        EXPECT_EQ(has.keys(), rule.value().keys()) << rule.key().toStdString();
        EXPECT_EQ(has.values(), rule.value().values()) << rule.key().toStdString();
    }
}

QRgb centreOf(QWidget& widget)
{
    const QImage image = widget.grab().toImage();
    return image.pixel(3, image.height() / 2);
}

} // namespace

TEST(StyleSheet, HasEachRuleWhole)
{
    expectRules(QLatin1String(windowRules), styleSheetText());
}

TEST(StyleSheet, HasTheRulesThatTheSettingsDialogAdds)
{
    expectRules(QLatin1String(settingsRules), settingsStyleSheetText());
}

TEST(StyleSheet, UsesThePaletteAndNoOtherColour)
{
    const QSet<QString> palette{"#0a0a0f", "#070710", "#07070f", "#050510", "#0a1a2e", "#0d3a6a",
                                "#1a5a9a", "#0d2a45", "#0d1a2a", "#1a4a7a", "#4db8ff", "#c0d8f0",
                                "#90b8d8", "#4a7aa0", "#2a5a8a", "#1a3a5a", "#ff8c00"};
    QSet<QString> used;
    static const QRegularExpression colour(QStringLiteral("#[0-9a-fA-F]{6}\\b"));
    const QString sheet = styleSheetText();
    for (const auto& match : colour.globalMatch(sheet))
        used.insert(match.captured());
    EXPECT_EQ(used, palette);
}

TEST(StyleSheet, DisabledRipButtonTakesItsOwnColours)
{
    QPushButton button;
    button.setObjectName(QStringLiteral("ripBtn"));
    button.setStyleSheet(styleSheetText());
    button.resize(120, 40);
    EXPECT_EQ(centreOf(button), 0xff0d3a6a);
    button.setEnabled(false);
    EXPECT_EQ(centreOf(button), 0xff050510);
}

TEST(StyleSheet, PlainWidgetsOfANamePaintTheirBackgroundAndBorder)
{
    QWidget bar;
    bar.setObjectName(QStringLiteral("titleBar"));
    bar.setStyleSheet(styleSheetText());
    bar.resize(100, 44);
    EXPECT_EQ(centreOf(bar), 0xff070710);
    EXPECT_EQ(bar.grab().toImage().pixel(50, 43), 0xff0d2a45);
}

TEST(Resources, HoldIconAndCheckMarksInTheirSizes)
{
    initResources();
    const QIcon icon(QStringLiteral(":/icon.ico"));
    for (const int edge : {16, 32, 48, 64, 128, 256})
        EXPECT_TRUE(icon.availableSizes().contains(QSize(edge, edge))) << edge;
    EXPECT_EQ(QImage(QStringLiteral(":/check.png")).size(), QSize(16, 16));
    EXPECT_EQ(QImage(QStringLiteral(":/check@2x.png")).size(), QSize(32, 32));
}
