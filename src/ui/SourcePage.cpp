#include "ui/SourcePage.h"

#include "base/Language.h"
#include "ui/DiscInHand.h"
#include "ui/PageParts.h"

#include <QComboBox>
#include <QFileDialog>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>

namespace {

/// A path field and its Browse button in one row.
QHBoxLayout* pathRow(QLineEdit* field, QPushButton* browse)
{
    browse->setFixedWidth(90);
    auto* row = new QHBoxLayout;
    row->addWidget(field, 1);
    row->addWidget(browse);
    return row;
}

QGroupBox* buildReadModeGroup()
{
    auto* content = new QVBoxLayout;
    content->addWidget(pageparts::label(QStringLiteral("High Accuracy Mode (Recommended)\n"
                                                       "  · Max 20 retries per sector\n"
                                                       "  · Majority voting for data integrity\n"),
                                        "previewLabel"));
    return pageparts::group(QStringLiteral("Read Mode"), content);
}

} // namespace

SourcePage::SourcePage(DiscInHand& inHand, QWidget* parent) : QWidget(parent), disc(inHand)
{
    auto* resetBtn =
        pageparts::button(pickLang("⟳  Reset — 最初からやり直す", "⟳  Reset — Start over"), "resetBtn");
    resetBtn->setFixedHeight(36);
    connect(resetBtn, &QPushButton::clicked, this, &SourcePage::resetClicked);

    auto* layout = pageparts::pageLayout(this, 20);
    layout->addWidget(pageparts::heading(pickLang("ソースを選択してください", "Select a source")));
    layout->addWidget(buildDriveGroup());
    layout->addWidget(buildSheetGroup());
    layout->addWidget(buildAudioGroup());
    layout->addWidget(buildReadModeGroup());
    layout->addWidget(resetBtn);
    layout->addStretch();
    refreshDrives();
}

QGroupBox* SourcePage::buildDriveGroup()
{
    driveCombo = new QComboBox;
    driveCombo->setObjectName(QStringLiteral("driveCombo"));
    driveCombo->setAccessibleName(pickLang("CD ドライブ", "CD drive"));
    auto* refresh = pageparts::button(QStringLiteral("↺"), "browseBtn");
    refresh->setFixedWidth(36);
    refresh->setToolTip(QStringLiteral("Refresh CD drives"));
    refresh->setAccessibleName(pickLang("CD ドライブを再検出", "Refresh CD drives"));
    connect(refresh, &QPushButton::clicked, this, [this] { refreshDrives(); });

    auto* row = new QHBoxLayout;
    row->addWidget(new QLabel(QStringLiteral("Drive:")));
    row->addWidget(driveCombo, 1);
    row->addWidget(refresh);
    return pageparts::group(pickLang("CD ドライブ", "CD Drive"), row);
}

QGroupBox* SourcePage::buildSheetGroup()
{
    cuePathEdit = pageparts::lineEdit("pathEdit", QStringLiteral("Select .cue file..."));
    cuePathEdit->setAccessibleName(pickLang("CUE シート", "CUE sheet"));
    auto* browse = pageparts::button(QStringLiteral("Browse..."), "browseBtn");
    browse->setAccessibleName(pickLang("CUE シートを選択", "Browse for a CUE sheet"));
    connect(browse, &QPushButton::clicked, this, [this] { pickCue(); });
    return pageparts::group(QStringLiteral("CUE/BIN File  ( CD drive not required )"),
                            pathRow(cuePathEdit, browse));
}

QGroupBox* SourcePage::buildAudioGroup()
{
    audioPathEdit = pageparts::lineEdit("pathEdit", QStringLiteral("Select audio file..."));
    audioPathEdit->setAccessibleName(pickLang("音声ファイル", "Audio file"));
    auto* browse = pageparts::button(QStringLiteral("Browse..."), "browseBtn");
    browse->setAccessibleName(pickLang("音声ファイルを選択", "Browse for an audio file"));
    connect(browse, &QPushButton::clicked, this, [this] { pickAudio(); });
    return pageparts::group(QStringLiteral("Audio File  ( CD drive not required )"),
                            pathRow(audioPathEdit, browse));
}

void SourcePage::refreshDrives()
{
    driveCombo->clear();
    driveCombo->setEnabled(true);
    const QStringList letters = CdDrive::enumerateDrives();
    if (letters.isEmpty()) {
        driveCombo->setPlaceholderText(QStringLiteral("No CD drive detected"));
        driveCombo->setEnabled(false);
        return;
    }
    driveCombo->setPlaceholderText(QString());
    for (const QString& letter : letters)
        driveCombo->addItem(QStringLiteral("CD-ROM  ") + letter, letter);
    driveCombo->setCurrentIndex(0);
}

void SourcePage::pickCue()
{
    const QString path = QFileDialog::getOpenFileName(window(), QStringLiteral("Select CUE file"), QString(),
                                                      QStringLiteral("CUE Sheet (*.cue)"));
    if (path.isEmpty())
        return;
    cuePathEdit->setText(path);
    driveCombo->setCurrentIndex(-1);
    if (disc.openSheet(path))
        Q_EMIT sheetRead();
}

void SourcePage::pickAudio()
{
    const QString path = QFileDialog::getOpenFileName(
        window(), QStringLiteral("Select audio file"), QString(),
        QStringLiteral(
            "Audio Files (*.wav *.aiff *.aif *.mp3 *.flac *.aac *.m4a *.ogg *.opus *.wv *.dsf *.dff)"));
    if (path.isEmpty())
        return;
    audioPathEdit->setText(path);
    driveCombo->setCurrentIndex(-1);
    cuePathEdit->clear();
}

QString SourcePage::driveLetter() const
{
    QString letter = driveCombo->currentData().toString();
    const QString text = driveCombo->currentText();
    if (!letter.isEmpty() || text.trimmed().isEmpty())
        return letter;
    static const QRegularExpression windowsLetter(QStringLiteral("([A-Z]:)"));
    return windowsLetter.match(text).captured(1);
}

ChosenSource SourcePage::chosen() const
{
    return {driveLetter(), cuePathEdit->text(), audioPathEdit->text()};
}

void SourcePage::focusFirst()
{
    (driveCombo->isEnabled() ? static_cast<QWidget*>(driveCombo) : cuePathEdit)->setFocus();
}

void SourcePage::clear()
{
    driveCombo->setCurrentIndex(-1);
    cuePathEdit->clear();
    audioPathEdit->clear();
}
