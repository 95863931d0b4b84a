#include "ui/MainWindow.h"

#include "base/Language.h"
#include "base/Settings.h"
#include "disc/CdDrive.h"
#include "metadata/lookup/CoverArt.h"
#include "ui/PageParts.h"

#include <QComboBox>
#include <QDebug>
#include <QFileDialog>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QTableWidget>

#include <exception>

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

/// The cover that the services have for a sheet, or none.
QPixmap coverOfSheet(const DiscToc& sheet)
{
    // What leaves a slot ends the program.
    try {
        return CoverArt().fetch(sheet.albumArtist, sheet.albumTitle);
    } catch (const std::exception& trouble) {
        qWarning() << "[Meta/CUE] cover given up:" << trouble.what();
        return {};
    }
}

} // namespace

QWidget* MainWindow::buildSourcePage()
{
    driveCombo = new QComboBox;
    driveCombo->setObjectName(QStringLiteral("driveCombo"));
    auto* refresh = pageparts::button(QStringLiteral("↺"), "browseBtn");
    refresh->setFixedWidth(36);
    refresh->setToolTip(QStringLiteral("Refresh CD drives"));
    refresh->setAccessibleName(pickLang("CD ドライブを再検出", "Refresh CD drives"));
    driveCombo->setAccessibleName(pickLang("CD ドライブ", "CD drive"));
    connect(refresh, &QPushButton::clicked, this, [this] { refreshDrives(); });
    auto* driveRow = new QHBoxLayout;
    driveRow->addWidget(new QLabel(QStringLiteral("Drive:")));
    driveRow->addWidget(driveCombo, 1);
    driveRow->addWidget(refresh);

    cuePathEdit = pageparts::lineEdit("pathEdit", QStringLiteral("Select .cue file..."));
    auto* browseCue = pageparts::button(QStringLiteral("Browse..."), "browseBtn");
    connect(browseCue, &QPushButton::clicked, this, [this] { pickCue(); });
    cuePathEdit->setAccessibleName(pickLang("CUE シート", "CUE sheet"));
    browseCue->setAccessibleName(pickLang("CUE シートを選択", "Browse for a CUE sheet"));

    audioPathEdit = pageparts::lineEdit("pathEdit", QStringLiteral("Select audio file..."));
    auto* browseAudio = pageparts::button(QStringLiteral("Browse..."), "browseBtn");
    connect(browseAudio, &QPushButton::clicked, this, [this] { pickAudio(); });
    audioPathEdit->setAccessibleName(pickLang("音声ファイル", "Audio file"));
    browseAudio->setAccessibleName(pickLang("音声ファイルを選択", "Browse for an audio file"));

    auto* resetBtn =
        pageparts::button(pickLang("⟳  Reset — 最初からやり直す", "⟳  Reset — Start over"), "resetBtn");
    resetBtn->setFixedHeight(36);
    connect(resetBtn, &QPushButton::clicked, this, [this] { reset(); });

    auto* page = new QWidget;
    auto* layout = pageparts::pageLayout(page, 20);
    layout->addWidget(pageparts::heading(pickLang("ソースを選択してください", "Select a source")));
    layout->addWidget(pageparts::group(pickLang("CD ドライブ", "CD Drive"), driveRow));
    layout->addWidget(pageparts::group(QStringLiteral("CUE/BIN File  ( CD drive not required )"),
                                       pathRow(cuePathEdit, browseCue)));
    layout->addWidget(pageparts::group(QStringLiteral("Audio File  ( CD drive not required )"),
                                       pathRow(audioPathEdit, browseAudio)));
    layout->addWidget(buildReadModeGroup());
    layout->addWidget(resetBtn);
    layout->addStretch();
    refreshDrives();
    return page;
}

QWidget* MainWindow::buildReadModeGroup()
{
    auto* content = new QVBoxLayout;
    content->addWidget(pageparts::label(QStringLiteral("High Accuracy Mode (Recommended)\n"
                                                       "  · Max 20 retries per sector\n"
                                                       "  · Majority voting for data integrity\n"),
                                        "previewLabel"));
    return pageparts::group(QStringLiteral("Read Mode"), content);
}

void MainWindow::refreshDrives()
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

void MainWindow::pickCue()
{
    const QString path = QFileDialog::getOpenFileName(this, QStringLiteral("Select CUE file"), QString(),
                                                      QStringLiteral("CUE Sheet (*.cue)"));
    if (path.isEmpty())
        return;
    cuePathEdit->setText(path);
    driveCombo->setCurrentIndex(-1);
    if (!drive->openCue(path))
        return;

    const DiscToc read = drive->readToc();
    if (!read.albumTitle.isEmpty())
        albumEdit->setText(read.albumTitle);
    if (!read.albumArtist.isEmpty())
        artistEdit->setText(read.albumArtist);
    if (!read.albumYear.isEmpty())
        yearEdit->setText(read.albumYear);
    trackTable->setRowCount(0);
    for (const TrackInfo& track : read.tracks)
        pageparts::addTrackRow(trackTable, pageparts::twoDigits(track.number), track.title,
                               pageparts::playingTime(track.seconds));
    disc = read;
    coverPixmap = coverOfSheet(read);
    if (!coverPixmap.isNull())
        pageparts::showCover(artLabel, coverPixmap);
}

void MainWindow::pickAudio()
{
    const QString path = QFileDialog::getOpenFileName(
        this, QStringLiteral("Select audio file"), QString(),
        QStringLiteral(
            "Audio Files (*.wav *.aiff *.aif *.mp3 *.flac *.aac *.m4a *.ogg *.opus *.wv *.dsf *.dff)"));
    if (path.isEmpty())
        return;
    audioPathEdit->setText(path);
    driveCombo->setCurrentIndex(-1);
    cuePathEdit->clear();
}

void MainWindow::applyDriveOffset()
{
    driveModel = drive->queryModel();
    if (driveModel.isEmpty()) {
        offsetSource = QStringLiteral("(drive model unknown - Settings value)");
        return;
    }
    const QSettings store;
    const QString key = driveOffsetKey(driveModel);
    if (!store.contains(key + QStringLiteral("/offset"))) {
        offsetSource = QStringLiteral("(Settings value)");
        return;
    }
    sampleOffset = store.value(key + QStringLiteral("/offset")).toInt();
    const QString source = store.value(key + QStringLiteral("/source"), QStringLiteral("saved")).toString();
    offsetSource = QLatin1Char('(') + source + QLatin1Char(')');
}
