#include "ui/MainWindow.h"

#include "base/Language.h"
#include "metadata/lookup/AnswerText.h"
#include "ui/AlbumFolder.h"
#include "ui/LookupChains.h"
#include "ui/PageParts.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QFutureWatcher>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QThreadPool>
#include <QVBoxLayout>
#include <QtConcurrentRun>

#include <algorithm>

namespace {

QLabel* formLabel(const QString& text)
{
    auto* made = pageparts::label(text, "formLabel");
    made->setFixedWidth(80);
    return made;
}

QHBoxLayout* formRow(const QString& text, QLineEdit* field)
{
    field->setAccessibleName(text);
    auto* row = new QHBoxLayout;
    row->addWidget(formLabel(text));
    row->addWidget(field, 1);
    return row;
}

QSpinBox* discSpin()
{
    auto* spin = new QSpinBox;
    spin->setObjectName(QStringLiteral("formEdit"));
    spin->setRange(1, 99);
    spin->setValue(1);
    spin->setFixedWidth(60);
    return spin;
}

/// What a list of found tracks or titles says at a place.
const QString& titleOf(const QString& title)
{
    return title;
}
template<typename Track>
const QString& titleOf(const Track& track)
{
    return track.title;
}

template<typename Tracks>
void fillTitles(QTableWidget* table, const Tracks& found, bool emptyToo)
{
    const int rows = static_cast<int>(std::min<qsizetype>(found.size(), table->rowCount()));
    for (int row = 0; row < rows; ++row) {
        const QString title = takenOver(titleOf(found[row]));
        if (emptyToo || !title.isEmpty())
            table->item(row, 1)->setText(title);
    }
}

} // namespace

QWidget* MainWindow::buildMetadataPage()
{
    artLabel = pageparts::label(QStringLiteral("♪"), "artLabel");
    artLabel->setFixedSize(pageparts::coverPixels, pageparts::coverPixels);
    artLabel->setAlignment(Qt::AlignCenter);
    artLabel->setAccessibleName(pickLang("アルバムアート", "Cover art"));
    auto* selectArt = pageparts::button(pickLang("アートを選択", "Select Art"), "browseBtn");
    connect(selectArt, &QPushButton::clicked, this, [this] { pickCover(); });
    auto* coverColumn = new QVBoxLayout;
    coverColumn->setSpacing(2); // keeps the page within the window at its first size
    coverColumn->addWidget(artLabel);
    coverColumn->addWidget(selectArt);
    coverColumn->addStretch();

    auto* columns = new QHBoxLayout;
    columns->setSpacing(24);
    columns->addLayout(coverColumn);
    columns->addLayout(buildAlbumFields(), 1);

    trackTable = pageparts::trackTable(
        {QStringLiteral("#"), pickLang("曲名", "Title"), pickLang("時間", "Time")}, 40, 70);
    trackTable->setFixedHeight(180);
    trackTable->setAccessibleName(pickLang("トラックリスト", "Track list"));

    // In one row with the title of the list that it stands in for, and as high, so
    // that the page needs no more room when it is shown.
    driveNotice = pageparts::label(QString(), "driveNotice");
    driveNotice->setStyleSheet(QStringLiteral("color: #ffaa00; font-size: 8pt;"));
    driveNotice->hide();
    auto* listTitle = new QHBoxLayout;
    listTitle->addWidget(pageparts::label(pickLang("トラックリスト", "Track List"), "sectionLabel"));
    listTitle->addWidget(driveNotice, 1);

    auto* page = new QWidget;
    auto* layout = pageparts::pageLayout(page, 16);
    layout->addWidget(pageparts::heading(
        pickLang("アルバム情報を確認・編集してください", "Check and edit the album information")));
    layout->addLayout(columns);
    layout->addLayout(listTitle);
    layout->addWidget(trackTable);
    layout->addStretch();
    return page;
}

QBoxLayout* MainWindow::buildAlbumFields()
{
    albumEdit = pageparts::lineEdit("formEdit");
    artistEdit = pageparts::lineEdit("formEdit");
    yearEdit = pageparts::lineEdit("formEdit");
    discNumberSpin = discSpin();
    discTotalSpin = discSpin();
    discNumberSpin->setAccessibleName(pickLang("ディスク番号", "Disc number"));
    discTotalSpin->setAccessibleName(pickLang("ディスク枚数", "Number of discs"));

    auto* discRow = new QHBoxLayout;
    discRow->addWidget(formLabel(QStringLiteral("DISC")));
    discRow->addWidget(discNumberSpin);
    discRow->addWidget(pageparts::label(QStringLiteral(" /  "), "formLabel"));
    discRow->addWidget(discTotalSpin);
    discRow->addStretch();

    auto* fields = new QVBoxLayout;
    fields->setSpacing(10);
    fields->addLayout(formRow(pickLang("アルバム", "Album"), albumEdit));
    fields->addLayout(formRow(pickLang("アーティスト", "Artist"), artistEdit));
    fields->addLayout(formRow(pickLang("年", "Year"), yearEdit));
    fields->addLayout(discRow);
    return fields;
}

void MainWindow::pickCover()
{
    const QString path =
        QFileDialog::getOpenFileName(this, QStringLiteral("Select cover art"), QString(),
                                     QStringLiteral("Images (*.png *.jpg *.jpeg *.bmp *.gif)"));
    QPixmap picture;
    if (path.isEmpty() || !picture.load(path))
        return;
    coverPixmap = picture;
    pageparts::showCover(artLabel, picture);
}

void MainWindow::fillTrackTable()
{
    trackTable->setRowCount(0);
    for (const TrackInfo& track : disc.tracks) {
        const QString title = track.isData ? pickLang("（データトラック・音声ではないため取り込みません）",
                                                      "(data track - not audio, will not be ripped)")
                                           : pageparts::shownTitle(track);
        pageparts::addTrackRow(trackTable, pageparts::twoDigits(track.number), title,
                               pageparts::playingTime(track.seconds));
    }
}

void MainWindow::fillForAudioFile()
{
    TrackInfo track;
    track.number = 1;
    track.title = QFileInfo(audioPathEdit->text()).completeBaseName();
    track.sourceIsAudioFile = true;
    disc = DiscToc();
    disc.tracks = {track};

    trackTable->setRowCount(0);
    pageparts::addTrackRow(trackTable, pageparts::twoDigits(track.number), track.title, QStringLiteral("—"));
    albumEdit->setPlaceholderText(pickLang("アルバム名を入力", "Enter album name"));
    artistEdit->setPlaceholderText(pickLang("アーティスト名を入力", "Enter artist name"));
}

void MainWindow::showDriveNotice(const QString& text)
{
    driveNotice->setText(text);
    driveNotice->setVisible(!text.isEmpty());
}

void MainWindow::mergeTitles()
{
    const auto rows = qMin<qsizetype>(trackTable->rowCount(), disc.tracks.size());
    for (int row = 0; row < rows; ++row) {
        const QString title = pageparts::cellText(trackTable, row, 1);
        if (!title.isEmpty() && !looksGenerated(title))
            disc.tracks[row].title = title;
    }
}

void MainWindow::startLookup(LookupChain chain)
{
    nextBtn->setEnabled(false);
    albumEdit->setPlaceholderText(pickLang("検索中...", "Searching..."));
    auto* watcher = new QFutureWatcher<MetaResult>(this);
    connect(watcher, &QFutureWatcher<MetaResult>::finished, this, [this, chain, watcher] {
        watcher->deleteLater();
        applyLookup(chain, watcher->result());
    });
    const auto lookUp = chain == LookupChain::disc ? lookUpDisc : lookUpSheet;
    watcher->setFuture(QtConcurrent::run(QThreadPool::globalInstance(), lookUp, disc));
}

void MainWindow::applyLookup(LookupChain chain, const MetaResult& found)
{
    const MusicBrainzResult& release = found.musicBrainz;
    if (!release.title.isEmpty()) {
        fillAlbum(release.title, release.artist, release.year);
        if (chain == LookupChain::disc && release.discCount >= 2) {
            discTotalSpin->setValue(release.discCount);
            // The disc of a set is told by its track count alone.
            const auto medium =
                std::find_if(release.media.cbegin(), release.media.cend(),
                             [this](const auto& m) { return m.tracks.size() == disc.tracks.size(); });
            if (medium != release.media.cend())
                discNumberSpin->setValue(medium->position);
        }
        fillTitles(trackTable, release.tracks, false);
    } else if (!found.gnuDb.album.isEmpty()) {
        fillAlbum(found.gnuDb.album, found.gnuDb.artist, found.gnuDb.year);
        fillTitles(trackTable, found.gnuDb.tracks, true);
    } else if (!found.iTunes.album.isEmpty()) {
        fillAlbum(found.iTunes.album, found.iTunes.artist, found.iTunes.year);
        fillTitles(trackTable, found.iTunes.tracks, true);
    } else {
        albumEdit->setPlaceholderText(
            pickLang("見つかりませんでした。手動で入力してください", "Not found. Please enter it manually"));
        artistEdit->setPlaceholderText(pickLang("アーティスト名を入力", "Enter artist name"));
        yearEdit->setPlaceholderText(pickLang("年", "Year"));
    }
    coverPixmap = found.cover;
    if (coverPixmap.isNull())
        artLabel->setText(QStringLiteral("♪"));
    else
        pageparts::showCover(artLabel, coverPixmap);
    // There only the end of a rip does that.
    if (currentStep != ripStep)
        nextBtn->setEnabled(true);
}

void MainWindow::fillAlbum(const QString& album, const QString& artist, const QString& year)
{
    albumEdit->setPlaceholderText(QString());
    yearEdit->setPlaceholderText(QString());
    albumEdit->setText(album);
    artistEdit->setText(artist);
    yearEdit->setText(year);
}
