#include "ui/StyleSheet.h"

namespace {

constexpr char frameRules[] = R"(
QMainWindow, QWidget { background: #0a0a0f; color: #c0d8f0; font-family: "Segoe UI"; font-size: 9pt; }
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
#settingsBtn, #convertBtn { background: #07070f; color: #2a5a8a; border: 1px solid #0d2a45;
    border-radius: 3px; padding: 4px 12px; font-size: 8pt; }
#settingsBtn:hover { color: #4db8ff; border-color: #4db8ff; }
#convertBtn:hover { color: #ff8c00; border-color: #ff8c00; }
)";

constexpr char pageRules[] = R"(
#stepHeading { color: #c0d8f0; font-size: 12pt; font-weight: bold; margin-bottom: 8px; }
#subLabel { color: #4a7aa0; font-size: 9pt; line-height: 1.6; }
#sourceGroup { color: #4a7aa0; border: 1px solid #0d2a45; border-radius: 5px; margin-top: 4px; padding: 8px; }
QGroupBox::title { color: #2a5a8a; subcontrol-origin: margin; left: 10px; padding: 0 4px; }
#driveCombo, QComboBox { background: #07070f; color: #4db8ff; border: 1px solid #0d2a45; border-radius: 3px;
    padding: 4px 10px; }
#driveCombo::drop-down, QComboBox::drop-down { border: none; }
#pathEdit, #formEdit { background: #07070f; color: #c0d8f0; border: 1px solid #0d2a45; border-radius: 3px;
    padding: 4px 8px; }
#browseBtn { background: #07070f; color: #4a7aa0; border: 1px solid #0d2a45; border-radius: 3px;
    padding: 4px 8px; }
#browseBtn:hover { color: #4db8ff; border-color: #4db8ff; }
#resetBtn { background: #07070f; color: #4a7aa0; border: 1px solid #0d2a45; border-radius: 3px;
    padding: 6px 12px; font-size: 12px; }
#resetBtn:hover { color: #4db8ff; border-color: #4db8ff; }
#previewLabel { color: #2a5a8a; font-family: "Consolas"; font-size: 8pt; line-height: 1.8; }
#formLabel { color: #2a5a8a; font-size: 8pt; }
#artLabel { background: #0a1a2e; border: 1px solid #1a4a7a; border-radius: 6px; color: #4db8ff;
    font-size: 32px; }
#sectionLabel { color: #2a5a8a; font-size: 8pt; letter-spacing: 2px; }
#trackTable { background: #07070f; border: 1px solid #0d2a45; border-radius: 4px; gridline-color: #0d1a2a;
    selection-background-color: #0a1a2e; }
#trackTable::item { padding: 4px 6px; color: #90b8d8; }
#trackTable::item:selected { color: #4db8ff; }
QHeaderView::section { background: #050510; color: #2a5a8a; border: none; border-bottom: 1px solid #0d2a45;
    padding: 4px 6px; font-size: 8pt; }
)";

constexpr char ripRules[] = R"(
#leftPane { background: #0a0a0f; }
#rightPane { background: #070710; border-left: 1px solid #0d2a45; }
#statCard { background: #050510; border: 1px solid #0d2a45; border-radius: 4px; }
#statLabel { color: #2a5a8a; font-size: 8pt; }
#statValue { color: #4db8ff; font-size: 15pt; font-weight: bold; }
#ripProgress { background: #0d2a45; border: none; border-radius: 2px; }
#ripProgress::chunk { background: #4db8ff; border-radius: 2px; }
#progressLabel { color: #2a5a8a; font-size: 8pt; }
#ripBtn { background: #0d3a6a; color: #4db8ff; border: 1px solid #4db8ff; border-radius: 3px;
    font-size: 10pt; letter-spacing: 1px; }
#ripBtn:hover { background: #1a5a9a; }
#ripBtn:disabled { background: #050510; color: #1a3a5a; border-color: #0d2a45; }
#verifyResult { color: #4db8ff; font-size: 18pt; font-weight: bold; }
#verifyDetail { color: #4a7aa0; font-size: 9pt; }
QTextEdit { background: #050510; color: #4a7aa0; border: none; font-family: "Consolas"; font-size: 9pt; }
)";

constexpr char choiceRules[] = R"(
QRadioButton { color: #4a7aa0; spacing: 8px; }
QRadioButton::indicator { width: 13px; height: 13px; border: 1px solid #4a7aa0; border-radius: 7px;
    background: #07070f; }
QRadioButton::indicator:hover { border-color: #4db8ff; }
QRadioButton::indicator:checked { border: 1px solid #4db8ff;
    background: qradialgradient(cx: 0.5, cy: 0.5, radius: 0.5, fx: 0.5, fy: 0.5,
        stop: 0 #4db8ff, stop: 0.5 #4db8ff, stop: 0.6 #07070f, stop: 1 #07070f); }
QCheckBox { color: #4a7aa0; spacing: 8px; }
QCheckBox::indicator { width: 14px; height: 14px; border: 1px solid #4a7aa0; border-radius: 3px;
    background: #07070f; }
QCheckBox::indicator:hover { border-color: #4db8ff; }
QCheckBox::indicator:checked { background: #4db8ff; border-color: #4db8ff; image: url(:/check.png); }
QCheckBox::indicator:disabled { border-color: #1a3a5a; }
#settingsSpin { background: #07070f; color: #4db8ff; border: 1px solid #0d2a45; border-radius: 3px;
    padding: 3px 6px; }
QSpinBox::up-button, QSpinBox::down-button { background: #0d2a45; border: none; width: 16px; }
#driveInfoVal { color: #c0d8f0; font-size: 9pt; }
#settingsCheck { color: #4a7aa0; }
)";

// Without these the base rule leaves half-native bars with white outlines.
constexpr char scrollBarRules[] = R"(
QScrollBar { background: #07070f; border: none; }
QScrollBar:vertical { width: 10px; }
QScrollBar:horizontal { height: 10px; }
QScrollBar::handle { background: #0d2a45; border-radius: 3px; }
QScrollBar::handle:hover { background: #1a5a9a; }
QScrollBar::handle:vertical { min-height: 24px; }
QScrollBar::handle:horizontal { min-width: 24px; }
QScrollBar::add-line, QScrollBar::sub-line { width: 0; height: 0; }
QScrollBar::add-page, QScrollBar::sub-page { background: none; }
)";

// Where the keyboard stands. The rules above leave it unseen on all but lists.
constexpr char focusRules[] = R"(
#pathEdit:focus, #formEdit:focus, #settingsSpin:focus, #driveCombo:focus, QComboBox:focus,
#trackTable:focus, #backBtn:focus, #browseBtn:focus, #resetBtn:focus, #settingsBtn:focus,
#convertBtn:focus { border-color: #4db8ff; }
#nextBtn:focus, #ripBtn:focus { border-color: #c0d8f0; }
QRadioButton:focus, QCheckBox:focus { color: #4db8ff; }
QTextEdit:focus { border: 1px solid #0d2a45; }
)";

constexpr char settingsRules[] = R"(
QTabWidget::pane { border: none; background: #0a0a0f; }
QTabBar::tab { background: #070710; color: #4a7aa0; padding: 8px 24px; border: none;
    border-bottom: 2px solid transparent; }
QTabBar::tab:selected { color: #4db8ff; border-bottom: 2px solid #4db8ff; background: #0a0a0f; }
QTabBar::tab:selected:focus { color: #c0d8f0; }
#aboutIcon { background: transparent; border: none; }
#aboutTitle { color: #4db8ff; font-size: 14pt; font-weight: bold; }
#aboutVer { color: #2a5a8a; font-size: 9pt; }
#aboutDesc { color: #4a7aa0; font-size: 9pt; line-height: 1.8; }
#aboutAuthor { color: #2a5a8a; font-size: 8pt; }
)";

} // namespace

QString styleSheetText()
{
    return QString::fromUtf8(frameRules) + QString::fromUtf8(pageRules) + QString::fromUtf8(ripRules)
           + QString::fromUtf8(choiceRules) + QString::fromUtf8(scrollBarRules)
           + QString::fromUtf8(focusRules);
}

QString settingsStyleSheetText()
{
    return QString::fromUtf8(settingsRules);
}
