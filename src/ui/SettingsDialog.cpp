#include "ui/MainWindow.h"

#include "base/Language.h"
#include "base/Settings.h"
#include "metadata/http/ServiceHosts.h"
#include "ui/AboutPage.h"
#include "ui/PageParts.h"
#include "ui/ProgramInfo.h"
#include "ui/Restart.h"
#include "ui/StyleSheet.h"

#include <QComboBox>
#include <QDialog>
#include <QFileDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>

/// The controls of the Settings tab that OK reads.
struct MainWindow::SettingsFields {
    QSpinBox* retries = nullptr;
    QSpinBox* offset = nullptr;
    QLineEdit* folder = nullptr;
    QLineEdit* rule = nullptr;
    QComboBox* language = nullptr;
};

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

QGroupBox* MainWindow::buildReadSettings(SettingsFields& fields)
{
    fields.retries = spinBox(1, 100, maxRetries);
    fields.offset = spinBox(-2000, 2000, sampleOffset);
    fields.offset->setSuffix(QStringLiteral(" samples"));
    auto* driveNote = note(driveModel.isEmpty() ? pickLang("（CDドライブを選んで②へ進むと表示されます）",
                                                           "(shown after selecting a CD drive)")
                                                : driveModel + QStringLiteral("   ") + offsetSource);

    auto* grid = settingsGrid();
    addField(grid, 0, QStringLiteral("Max retries / sector"), fields.retries);
    addField(grid, 1, QStringLiteral("Sample offset"), fields.offset);
    grid->addWidget(pageparts::label(QStringLiteral("Drive"), "formLabel"), 2, 0);
    grid->addWidget(driveNote, 2, 1);
    grid->addWidget(driveListNote(), 3, 1);
    return settingsGroup(QStringLiteral("Read Settings"), grid);
}

QGroupBox* MainWindow::buildOutputSettings(SettingsFields& fields)
{
    auto* folder = pageparts::lineEdit("pathEdit");
    folder->setText(folderToStartWith());
    fields.folder = folder;
    fields.rule = pageparts::lineEdit("pathEdit");
    fields.rule->setText(namingRule);

    const QString pickerTitle = QStringLiteral("Select folder");
    auto* browse = pageparts::button(QStringLiteral("..."), "browseBtn");
    browse->setFixedWidth(40);
    browse->setAccessibleName(pickerTitle);
    connect(browse, &QPushButton::clicked, this, [this, folder, pickerTitle] {
        const QString chosen =
            QFileDialog::getExistingDirectory(this, pickerTitle, folder->text(), QFileDialog::ShowDirsOnly);
        if (!chosen.isEmpty())
            folder->setText(chosen);
    });

    auto* grid = settingsGrid();
    addField(grid, 0, QStringLiteral("Default output folder"), fields.folder, browse);
    addField(grid, 1, QStringLiteral("Naming rule"), fields.rule);
    grid->addWidget(note(QStringLiteral("Variables: {track} {title} {artist} {album} {year}")), 2, 1);
    return settingsGroup(QStringLiteral("Output Settings"), grid);
}

QWidget* MainWindow::buildSettingsTab(SettingsFields& fields)
{
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(24, 20, 24, 20);
    layout->setSpacing(16);
    layout->addWidget(buildReadSettings(fields));
    layout->addWidget(buildOutputSettings(fields));
    fields.language = languageCombo();
    auto* grid = settingsGrid();
    addField(grid, 0, pickLang("表示言語", "Display language"), fields.language);
    layout->addWidget(settingsGroup(QStringLiteral("Language / 言語"), grid));
    layout->addStretch();
    return page;
}

void MainWindow::applySettings(const SettingsFields& fields)
{
    QSettings store;
    maxRetries = fields.retries->value();
    if (fields.offset->value() != sampleOffset && !driveModel.isEmpty()) {
        const QString key = driveOffsetKey(driveModel);
        const QString source = QStringLiteral("set in Settings");
        store.setValue(key + QStringLiteral("/offset"), fields.offset->value());
        store.setValue(key + QStringLiteral("/source"), source);
        offsetSource = QLatin1Char('(') + source + QLatin1Char(')');
    }
    sampleOffset = fields.offset->value();

    const QString folder = fields.folder->text().trimmed();
    if (folder != defaultOutputDir && !folder.isEmpty()) {
        defaultOutputDir = folder;
        outputPathEdit->setText(folder);
    }
    namingRule = fields.rule->text().trimmed();
    if (namingRule.isEmpty())
        namingRule = QLatin1String(settings::defaultNamingRule);

    store.setValue(QLatin1String(settings::maxRetries), maxRetries);
    store.setValue(QLatin1String(settings::sampleOffset), sampleOffset);
    store.setValue(QLatin1String(settings::defaultDir), defaultOutputDir);
    store.setValue(QLatin1String(settings::namingRule), namingRule);
    updateFolderPreview();
}

void MainWindow::acceptSettings(const SettingsFields& fields, QDialog* dialog)
{
    applySettings(fields);
    const int mode = fields.language->currentData().toInt();
    const bool modeChanged = mode != languageMode();
    if (modeChanged)
        setLanguageMode(mode);
    dialog->accept();
    if (!modeChanged)
        return;
    const auto answer = QMessageBox::question(
        this, pickLang("表示言語の変更", "Display Language"),
        pickLang("表示言語の変更は、アプリの再起動後に反映されます。\n今すぐ再起動しますか？",
                 "The new display language will be applied after restarting.\nRestart now?"),
        QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes);
    if (answer == QMessageBox::Yes)
        restartProgram();
}

void MainWindow::onSettingsClicked()
{
    auto* dialog = new QDialog(this);
    dialog->setWindowTitle(QStringLiteral("Settings — ") + QLatin1String(programinfo::name));
    dialog->setMinimumSize(560, 700);
    dialog->setModal(true);
    dialog->setStyleSheet(styleSheet() + settingsStyleSheetText());

    SettingsFields fields;
    auto* tabs = new QTabWidget;
    tabs->setObjectName(QStringLiteral("settingsTabs"));
    tabs->addTab(buildSettingsTab(fields), QStringLiteral("Settings"));
    tabs->addTab(buildAboutPage(), QStringLiteral("About"));

    auto* navBar = new QWidget;
    navBar->setObjectName(QStringLiteral("navBar"));
    navBar->setFixedHeight(52);
    auto* cancel = pageparts::button(QStringLiteral("Cancel"), "backBtn");
    auto* ok = pageparts::button(QStringLiteral("OK"), "nextBtn");
    cancel->setFixedSize(90, 32);
    ok->setFixedSize(90, 32);
    connect(cancel, &QPushButton::clicked, dialog, &QDialog::reject);
    connect(ok, &QPushButton::clicked, dialog, [this, fields, dialog] { acceptSettings(fields, dialog); });
    auto* row = new QHBoxLayout(navBar);
    row->setContentsMargins(20, 0, 20, 0);
    row->addStretch();
    row->addWidget(cancel);
    row->addWidget(ok);

    auto* layout = new QVBoxLayout(dialog);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(tabs, 1);
    layout->addWidget(navBar);
    // A button is nobody's default before it has its dialog.
    ok->setDefault(true);
    dialog->exec();
}
