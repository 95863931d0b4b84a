#include "ui/StyleSheet.h"

#include "ui/Resources.h"

#include <QCheckBox>
#include <QIcon>
#include <QImage>
#include <QLabel>
#include <QMap>
#include <QPushButton>
#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

namespace {

/// What the sheet says of a selector, all rules joined, blanks taken out.
QString ruleOf(const QString& selector, const QString& sheet = styleSheetText())
{
    QString found;
    static const QRegularExpression rule(QStringLiteral(R"(([^{}]+)\{([^{}]*)\})"));
    for (const auto& match : rule.globalMatch(sheet)) {
        for (const QString& name : match.captured(1).split(QLatin1Char(','))) {
            if (name.trimmed() == selector)
                found += match.captured(2).simplified().remove(QLatin1Char(' '));
        }
    }
    return found;
}

QRgb centreOf(QWidget& widget)
{
    const QImage image = widget.grab().toImage();
    return image.pixel(3, image.height() / 2);
}

} // namespace

TEST(StyleSheet, HasARuleForEveryNameThatHasOne)
{
    const QMap<QString, QString> expected{
        {"QWidget", "color:#c0d8f0"},
        {"QMainWindow", "\"SegoeUI\""},
        {"#titleBar", "border-bottom:1pxsolid#0d2a45"},
        {"#stepBar", "#070710"},
        {"#navBar", "border-top:1pxsolid#0d2a45"},
        {"#appTitle", "letter-spacing:3px"},
        {"#verLabel", "margin-left:10px"},
        {"#stepLabel", "padding:4px"},
        {"#stepLabel[active=\"true\"]", "border-bottom:2pxsolid#4db8ff"},
        {"#stepLabel[done=\"true\"]", "#1a5a9a"},
        {"#stepSep", "12pt"},
        {"#hline", "border-top:1pxsolid#0d2a45"},
        {"#backBtn", "#4a7aa0"},
        {"#backBtn:hover", "#0a1a2e"},
        {"#nextBtn", "letter-spacing:1px"},
        {"#nextBtn:hover", "#1a5a9a"},
        {"#stepHeading", "margin-bottom:8px"},
        {"#subLabel", "line-height:1.6"},
        {"#sourceGroup", "border-radius:5px"},
        {"QGroupBox::title", "left:10px"},
        {"#driveCombo", "padding:4px10px"},
        {"QComboBox", "#4db8ff"},
        {"#pathEdit", "padding:4px8px"},
        {"#formEdit", "padding:4px8px"},
        {"#browseBtn", "padding:4px8px"},
        {"#browseBtn:hover", "border-color:#4db8ff"},
        {"#resetBtn", "font-size:12px"},
        {"#resetBtn:hover", "border-color:#4db8ff"},
        {"#previewLabel", "\"Consolas\""},
        {"#formLabel", "8pt"},
        {"#artLabel", "32px"},
        {"#sectionLabel", "letter-spacing:2px"},
        {"#trackTable", "gridline-color:#0d1a2a"},
        {"#trackTable::item", "#90b8d8"},
        {"#trackTable::item:selected", "#4db8ff"},
        {"QHeaderView::section", "#050510"},
        {"QRadioButton", "spacing:8px"},
        {"QRadioButton::indicator", "border-radius:7px"},
        {"QRadioButton::indicator:hover", "#4db8ff"},
        {"QRadioButton::indicator:checked", "qradialgradient"},
        {"#leftPane", "#0a0a0f"},
        {"#rightPane", "border-left:1pxsolid#0d2a45"},
        {"#statCard", "#050510"},
        {"#statLabel", "8pt"},
        {"#statValue", "15pt"},
        {"#ripProgress", "border-radius:2px"},
        {"#ripProgress::chunk", "#4db8ff"},
        {"#progressLabel", "#2a5a8a"},
        {"#ripBtn", "10pt"},
        {"#ripBtn:hover", "#1a5a9a"},
        {"#ripBtn:disabled", "#1a3a5a"},
        {"#settingsBtn", "padding:4px12px"},
        {"#settingsBtn:hover", "#4db8ff"},
        {"#convertBtn:hover", "#ff8c00"},
        {"#settingsSpin", "padding:3px6px"},
        {"QSpinBox::up-button", "width:16px"},
        {"QSpinBox::down-button", "#0d2a45"},
        {"QCheckBox", "#4a7aa0"},
        {"QCheckBox::indicator", "width:14px"},
        {"QCheckBox::indicator:checked", "url(:/check.png)"},
        {"QCheckBox::indicator:disabled", "#1a3a5a"},
        {"#verifyResult", "18pt"},
        {"#verifyDetail", "9pt"},
        {"QTextEdit", "\"Consolas\""},
        {"QDialog", "#0a0a0f"},
        {"#driveInfoVal", "#c0d8f0"},
        {"#settingsCheck", "#4a7aa0"},
    };
    for (auto rule = expected.cbegin(); rule != expected.cend(); ++rule)
        EXPECT_TRUE(ruleOf(rule.key()).contains(rule.value()))
            << rule.key().toStdString() << ": " << ruleOf(rule.key()).toStdString();
}

TEST(StyleSheet, HasTheRulesThatTheSettingsDialogAdds)
{
    const QMap<QString, QString> expected{
        {"QTabWidget::pane", "border:none;background:#0a0a0f;"},
        {"QTabBar::tab", "background:#070710;color:#4a7aa0;padding:8px24px;border:none;"
                         "border-bottom:2pxsolidtransparent;"},
        {"QTabBar::tab:selected", "color:#4db8ff;border-bottom:2pxsolid#4db8ff;background:#0a0a0f;"},
        {"#aboutIcon", "background:transparent;border:none;"},
        {"#aboutTitle", "color:#4db8ff;font-size:14pt;font-weight:bold;"},
        {"#aboutVer", "color:#2a5a8a;font-size:9pt;"},
        {"#aboutDesc", "color:#4a7aa0;font-size:9pt;line-height:1.8;"},
        {"#aboutAuthor", "color:#2a5a8a;font-size:8pt;"},
    };
    for (auto rule = expected.cbegin(); rule != expected.cend(); ++rule)
        EXPECT_EQ(ruleOf(rule.key(), settingsStyleSheetText()), rule.value()) << rule.key().toStdString();
}

TEST(StyleSheet, UsesThePaletteAndNoOtherColour)
{
    const QSet<QString> palette{"#0a0a0f", "#070710", "#07070f", "#050510", "#0a1a2e", "#0d3a6a", "#1a5a9a",
                                "#0d2a45", "#0d1a2a", "#1a4a7a", "#4db8ff", "#c0d8f0", "#90b8d8", "#4a7aa0",
                                "#2a5a8a", "#1a3a5a", "#ff8c00"};
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
