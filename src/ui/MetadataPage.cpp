#include "ui/MetadataPage.h"

#include "base/Language.h"
#include "rip/OutputNaming.h"
#include "ui/Background.h"
#include "ui/DiscInHand.h"
#include "ui/DriveNotice.h"
#include "ui/LookupChains.h"
#include "ui/PageParts.h"
#include "ui/TrackTable.h"

#include <QFileDialog>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace {

QString noCover()
{
    return QStringLiteral("♪");
}

/// Shows for its lifetime that the window waits for something.
class WaitCursor {
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

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

QSpinBox* discSpin(const QString& accessibleName)
{
    auto* spin = new QSpinBox;
    spin->setObjectName(QStringLiteral("formEdit"));
    spin->setRange(1, 99);
    spin->setValue(1);
    spin->setFixedWidth(60);
    spin->setAccessibleName(accessibleName);
    return spin;
}

QString enterArtist()
{
    return pickLang("アーティスト名を入力", "Enter artist name");
}

template<typename Tracks>
QStringList titlesOf(const Tracks& tracks)
{
    QStringList titles;
    for (const auto& track : tracks)
        titles << track.title;
    return titles;
}

} // namespace

MetadataPage::MetadataPage(DiscInHand& inHand, QWidget* parent) : QWidget(parent), disc(inHand)
{
    auto* columns = new QHBoxLayout;
    columns->setSpacing(24);
    columns->addLayout(buildCover());
    columns->addLayout(buildAlbumFields(), 1);

    trackTable =
        tracktable::make({QStringLiteral("#"), pickLang("曲名", "Title"), pickLang("時間", "Time")}, 40, 70);
    trackTable->setFixedHeight(180);
    trackTable->setAccessibleName(pickLang("トラックリスト", "Track list"));

    auto* layout = pageparts::pageLayout(this, 16);
    layout->addWidget(pageparts::heading(
        pickLang("アルバム情報を確認・編集してください", "Check and edit the album information")));
    layout->addLayout(columns);
    layout->addLayout(buildListTitle());
    layout->addWidget(trackTable);
    layout->addStretch();
}

QBoxLayout* MetadataPage::buildCover()
{
    artLabel = pageparts::label(noCover(), "artLabel");
    artLabel->setFixedSize(pageparts::coverPixels, pageparts::coverPixels);
    artLabel->setAlignment(Qt::AlignCenter);
    artLabel->setAccessibleName(pickLang("アルバムアート", "Cover art"));
    auto* selectArt = pageparts::button(pickLang("アートを選択", "Select Art"), "browseBtn");
    connect(selectArt, &QPushButton::clicked, this, [this] { pickCover(); });
    auto* column = new QVBoxLayout;
    column->setSpacing(2); // keeps the page within the window at its first size
    column->addWidget(artLabel);
    column->addWidget(selectArt);
    column->addStretch();
    return column;
}

QBoxLayout* MetadataPage::buildAlbumFields()
{
    albumEdit = pageparts::lineEdit("formEdit");
    artistEdit = pageparts::lineEdit("formEdit");
    yearEdit = pageparts::lineEdit("formEdit");
    discNumberSpin = discSpin(pickLang("ディスク番号", "Disc number"));
    discTotalSpin = discSpin(pickLang("ディスク枚数", "Number of discs"));

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

// The notice stands in one row with the title of the list that it stands in for,
// and is as high, so that the page needs no more room when it is shown.
QBoxLayout* MetadataPage::buildListTitle()
{
    driveNotice = pageparts::label(QString(), "driveNotice");
    driveNotice->setStyleSheet(QStringLiteral("color: #ffaa00; font-size: 8pt;"));
    driveNotice->hide();
    auto* row = new QHBoxLayout;
    row->addWidget(pageparts::label(pickLang("トラックリスト", "Track List"), "sectionLabel"));
    row->addWidget(driveNotice, 1);
    return row;
}

void MetadataPage::pickCover()
{
    const QString path =
        QFileDialog::getOpenFileName(window(), QStringLiteral("Select cover art"), QString(),
                                     QStringLiteral("Images (*.png *.jpg *.jpeg *.bmp *.gif)"));
    QPixmap picture;
    if (path.isEmpty() || !picture.load(path))
        return;
    coverPixmap = picture;
    pageparts::showCover(artLabel, picture);
}

// A sheet's tracks were shown when it was picked.
void MetadataPage::enter(const ChosenSource& source)
{
    showDriveNotice(QString());
    if (source.isAudioFile())
        enterAudioFile(source.audioPath);
    else if (source.isDrive())
        enterDrive(source.driveLetter);
    else if (source.isSheet() && !disc.toc.tracks.isEmpty())
        startLookup(LookupChain::sheet);
}

void MetadataPage::enterDrive(const QString& letter)
{
    // Its disc is on the page.
    if (disc.isBeingRipped())
        return;
    const WaitCursor cursor;
    if (!disc.openDrive(letter)) {
        showDriveNotice(driveIsShutNotice());
        return;
    }
    if (!disc.readDisc()) {
        showDriveNotice(noDiscNotice(disc.drive.tocFailure()));
        return;
    }
    tracktable::showDisc(trackTable, disc.toc);
    startLookup(LookupChain::disc);
}

void MetadataPage::enterAudioFile(const QString& path)
{
    disc.takeAudioFile(path);
    trackTable->setRowCount(0);
    tracktable::addRow(trackTable, {twoDigits(1), disc.toc.tracks.first().title}, QStringLiteral("—"));
    albumEdit->setPlaceholderText(pickLang("アルバム名を入力", "Enter album name"));
    artistEdit->setPlaceholderText(enterArtist());
}

void MetadataPage::showSheet()
{
    const DiscToc& sheet = disc.toc;
    if (!sheet.albumTitle.isEmpty())
        albumEdit->setText(sheet.albumTitle);
    if (!sheet.albumArtist.isEmpty())
        artistEdit->setText(sheet.albumArtist);
    if (!sheet.albumYear.isEmpty())
        yearEdit->setText(sheet.albumYear);
    tracktable::showSheet(trackTable, sheet);
    coverPixmap = coverOfSheet(sheet);
    if (!coverPixmap.isNull())
        pageparts::showCover(artLabel, coverPixmap);
}

void MetadataPage::showDriveNotice(const QString& text)
{
    driveNotice->setText(text);
    driveNotice->setVisible(!text.isEmpty());
}

AlbumFields MetadataPage::album() const
{
    return {albumEdit->text(),       artistEdit->text(),     yearEdit->text(),
            discNumberSpin->value(), discTotalSpin->value(), coverPixmap};
}

QList<TrackRow> MetadataPage::tracks() const
{
    return tracktable::rows(trackTable);
}

void MetadataPage::commitTitles()
{
    // An open cell editor commits when its table loses the current item.
    trackTable->clearFocus();
    trackTable->setCurrentItem(nullptr);
    tracktable::takeTitles(trackTable, disc.toc.tracks);
}

void MetadataPage::focusFirst()
{
    albumEdit->setFocus();
}

void MetadataPage::clear()
{
    for (QLineEdit* field : {albumEdit, artistEdit, yearEdit}) {
        field->clear();
        field->setPlaceholderText(QString());
    }
    trackTable->setRowCount(0);
    showDriveNotice(QString());
    coverPixmap = QPixmap();
    artLabel->setText(noCover());
    discNumberSpin->setValue(1);
    discTotalSpin->setValue(1);
}

void MetadataPage::startLookup(LookupChain chain)
{
    Q_EMIT lookupStarted();
    albumEdit->setPlaceholderText(pickLang("検索中...", "Searching..."));
    const auto lookUp = chain == LookupChain::disc ? lookUpDisc : lookUpSheet;
    runInBackground(
        this, [lookUp, toc = disc.toc] { return lookUp(toc); },
        [this, chain](const MetaResult& found) { applyLookup(chain, found); });
}

void MetadataPage::applyLookup(LookupChain chain, const MetaResult& found)
{
    const auto& [release, gnuDb, iTunes, cover] = found;
    if (!release.title.isEmpty()) {
        fillAlbum(release.title, release.artist, release.year);
        tracktable::fillTitles(trackTable, titlesOf(release.tracks), false);
        if (chain == LookupChain::disc)
            showPlaceInSet(release);
    } else if (!gnuDb.album.isEmpty()) {
        fillAlbum(gnuDb.album, gnuDb.artist, gnuDb.year);
        tracktable::fillTitles(trackTable, titlesOf(gnuDb.tracks), true);
    } else if (!iTunes.album.isEmpty()) {
        fillAlbum(iTunes.album, iTunes.artist, iTunes.year);
        tracktable::fillTitles(trackTable, iTunes.tracks, true);
    } else {
        showMiss();
    }
    coverPixmap = cover;
    if (coverPixmap.isNull())
        artLabel->setText(noCover());
    else
        pageparts::showCover(artLabel, coverPixmap);
    Q_EMIT lookupEnded();
}

void MetadataPage::fillAlbum(const QString& album, const QString& artist, const QString& year)
{
    albumEdit->setPlaceholderText(QString());
    yearEdit->setPlaceholderText(QString());
    albumEdit->setText(album);
    artistEdit->setText(artist);
    yearEdit->setText(year);
}

void MetadataPage::showPlaceInSet(const MusicBrainzResult& release)
{
    if (release.discCount < 2)
        return;
    discTotalSpin->setValue(release.discCount);
    // The disc of a set is told by its track count alone.
    const auto medium = std::find_if(release.media.cbegin(), release.media.cend(), [this](const auto& m) {
        return m.tracks.size() == disc.toc.tracks.size();
    });
    if (medium != release.media.cend())
        discNumberSpin->setValue(medium->position);
}

void MetadataPage::showMiss()
{
    albumEdit->setPlaceholderText(
        pickLang("見つかりませんでした。手動で入力してください", "Not found. Please enter it manually"));
    artistEdit->setPlaceholderText(enterArtist());
    yearEdit->setPlaceholderText(pickLang("年", "Year"));
}
