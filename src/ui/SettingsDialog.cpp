#include "ui/SettingsDialog.h"

#include "base/Language.h"
#include "metadata/http/ServiceHosts.h"
#include "ui/AboutPage.h"
#include "ui/DiscInHand.h"
#include "ui/PageParts.h"
#include "ui/ProgramInfo.h"
#include "ui/Restart.h"
#include "ui/RipSettings.h"
#include "ui/StyleSheet.h"

#include <QComboBox>
#include <QFileDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>

namespace {

QGridLayout* settingsGrid()
{
    auto* grid = new QGridLayout;
    grid->setSpacing(10);
    grid->setColumnMinimumWidth(0, 160);
    return grid;
}

QGroupBox* settingsGroup(const QString& title, QGridLayout* grid)
{
    auto* made = new QGroupBox(title);
    made->setObjectName(QStringLiteral("sourceGroup"));
    made->setLayout(grid);
    return made;
}

/// Puts a field behind its label, which names the field to a screen reader.
void addField(QGridLayout* grid, int row, const QString& text, QWidget* field, QWidget* beside = nullptr)
{
    auto* label = pageparts::label(text, "formLabel");
    label->setBuddy(field);
    field->setAccessibleName(text);
    grid->addWidget(label, row, 0);
    auto* fields = new QHBoxLayout;
    fields->addWidget(field, 1);
    if (beside)
        fields->addWidget(beside);
    grid->addLayout(fields, row, 1);
}

QSpinBox* spinBox(int least, int most, int value)
{
    auto* made = new QSpinBox;
    made->setObjectName(QStringLiteral("settingsSpin"));
    made->setRange(least, most);
    made->setValue(value);
    return made;
}

QLabel* note(const QString& text)
{
    auto* made = pageparts::label(text, "progressLabel");
    made->setWordWrap(true);
    return made;
}

QLabel* driveListNote()
{
    auto* made =
        pageparts::linkLabel(pickLang("ドライブの値は %1 で調べられます", "Look up your drive in the %1"),
                             QLatin1String(services::accurateRip) + QStringLiteral("/driveoffsets.htm"),
                             pickLang("AccurateRipのドライブ一覧", "AccurateRip drive list"));
    made->setObjectName(QStringLiteral("progressLabel"));
    made->setWordWrap(true);
    return made;
}

QComboBox* languageCombo()
{
    auto* made = new QComboBox;
    made->addItem(pickLang("自動（Windowsの言語に合わせる）", "Auto (follow Windows)"), 0);
    made->addItem(QStringLiteral("日本語"), 1);
    made->addItem(QStringLiteral("English"), 2);
    made->setCurrentIndex(made->findData(languageMode()));
    return made;
}

} // namespace

SettingsDialog::SettingsDialog(RipSettings& inForce, DiscInHand& inHand, QWidget* parent)
    : QDialog(parent), settings(inForce), disc(inHand)
{
    setWindowTitle(QStringLiteral("Settings — ") + QLatin1String(programinfo::name));
    setMinimumSize(560, 700);
    setModal(true);
    setStyleSheet(styleSheetText() + settingsStyleSheetText());

    auto* tabs = new QTabWidget;
    tabs->setObjectName(QStringLiteral("settingsTabs"));
    tabs->addTab(buildSettingsTab(), QStringLiteral("Settings"));
    tabs->addTab(buildAboutPage(), QStringLiteral("About"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(tabs, 1);
    layout->addWidget(buildNavBar());
}

QWidget* SettingsDialog::buildSettingsTab()
{
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(24, 20, 24, 20);
    layout->setSpacing(16);
    layout->addWidget(buildReadSettings());
    layout->addWidget(buildOutputSettings());
    layout->addWidget(buildLanguageSettings());
    layout->addStretch();
    return page;
}

QGroupBox* SettingsDialog::buildReadSettings()
{
    retries = spinBox(1, 100, settings.maxRetries);
    offset = spinBox(-2000, 2000, settings.sampleOffset);
    offset->setSuffix(QStringLiteral(" samples"));
    auto* driveNote =
        note(disc.driveModel.isEmpty() ? pickLang("（CDドライブを選んで②へ進むと表示されます）",
                                                  "(shown after selecting a CD drive)")
                                       : disc.driveModel + QStringLiteral("   ") + disc.offsetSource);

    auto* grid = settingsGrid();
    addField(grid, 0, QStringLiteral("Max retries / sector"), retries);
    addField(grid, 1, QStringLiteral("Sample offset"), offset);
    grid->addWidget(pageparts::label(QStringLiteral("Drive"), "formLabel"), 2, 0);
    grid->addWidget(driveNote, 2, 1);
    grid->addWidget(driveListNote(), 3, 1);
    return settingsGroup(QStringLiteral("Read Settings"), grid);
}

QGroupBox* SettingsDialog::buildOutputSettings()
{
    folder = pageparts::lineEdit("pathEdit");
    folder->setText(settings.folderToStartWith());
    rule = pageparts::lineEdit("pathEdit");
    rule->setText(settings.namingRule);

    auto* grid = settingsGrid();
    addField(grid, 0, QStringLiteral("Default output folder"), folder, buildFolderButton());
    addField(grid, 1, QStringLiteral("Naming rule"), rule);
    grid->addWidget(note(QStringLiteral("Variables: {track} {title} {artist} {album} {year}")), 2, 1);
    return settingsGroup(QStringLiteral("Output Settings"), grid);
}

QWidget* SettingsDialog::buildFolderButton()
{
    const QString pickerTitle = QStringLiteral("Select folder");
    auto* browse = pageparts::button(QStringLiteral("..."), "browseBtn");
    browse->setFixedWidth(40);
    browse->setAccessibleName(pickerTitle);
    connect(browse, &QPushButton::clicked, this, [this, pickerTitle] {
        const QString chosen = QFileDialog::getExistingDirectory(parentWidget(), pickerTitle, folder->text(),
                                                                 QFileDialog::ShowDirsOnly);
        if (!chosen.isEmpty())
            folder->setText(chosen);
    });
    return browse;
}

QGroupBox* SettingsDialog::buildLanguageSettings()
{
    language = languageCombo();
    auto* grid = settingsGrid();
    addField(grid, 0, pickLang("表示言語", "Display language"), language);
    return settingsGroup(QStringLiteral("Language / 言語"), grid);
}

QWidget* SettingsDialog::buildNavBar()
{
    auto* navBar = new QWidget(this);
    navBar->setObjectName(QStringLiteral("navBar"));
    navBar->setFixedHeight(52);
    auto* cancel = pageparts::button(QStringLiteral("Cancel"), "backBtn");
    auto* ok = pageparts::button(QStringLiteral("OK"), "nextBtn");
    cancel->setFixedSize(90, 32);
    ok->setFixedSize(90, 32);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(ok, &QPushButton::clicked, this, &SettingsDialog::acceptSettings);
    auto* row = new QHBoxLayout(navBar);
    row->setContentsMargins(20, 0, 20, 0);
    row->addStretch();
    row->addWidget(cancel);
    row->addWidget(ok);
    // A button is nobody's default before it has its dialog.
    ok->setDefault(true);
    return navBar;
}

void SettingsDialog::applySettings()
{
    settings.maxRetries = retries->value();
    if (offset->value() != settings.sampleOffset && !disc.driveModel.isEmpty())
        disc.storeOwnOffset(offset->value());
    settings.sampleOffset = offset->value();
    takeFolder(folder->text().trimmed());
    settings.setNamingRule(rule->text().trimmed());
    settings.store();
    Q_EMIT applied();
}

void SettingsDialog::takeFolder(const QString& path)
{
    if (path.isEmpty() || path == settings.defaultFolder)
        return;
    settings.defaultFolder = path;
    Q_EMIT folderChanged(path);
}

void SettingsDialog::acceptSettings()
{
    applySettings();
    const int mode = language->currentData().toInt();
    const bool modeChanged = mode != languageMode();
    if (modeChanged)
        setLanguageMode(mode);
    accept();
    if (modeChanged)
        askForRestart();
}

void SettingsDialog::askForRestart()
{
    const auto answer = QMessageBox::question(
        parentWidget(), pickLang("表示言語の変更", "Display Language"),
        pickLang("表示言語の変更は、アプリの再起動後に反映されます。\n今すぐ再起動しますか？",
                 "The new display language will be applied after restarting.\nRestart now?"),
        QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes);
    if (answer == QMessageBox::Yes)
        restartProgram();
}
