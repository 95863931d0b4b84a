#include "ui/TrackTable.h"

#include "base/Language.h"
#include "disc/DiscModel.h"
#include "metadata/lookup/AnswerText.h"
#include "rip/OutputNaming.h"
#include "ui/AlbumFolder.h"

#include <QHeaderView>
#include <QTableWidget>

#include <algorithm>

namespace {

/// Minutes and two digits of seconds.
QString playingTime(int seconds)
{
    return QStringLiteral("%1:%2").arg(QString::number(seconds / 60), twoDigits(seconds % 60));
}

QString cellText(const QTableWidget* table, int row, int column)
{
    const QTableWidgetItem* item = table->item(row, column);
    return item ? item->text() : QString();
}

} // namespace

namespace tracktable {

QTableWidget* make(const QStringList& headers, int firstWidth, int lastWidth)
{
    auto* table = new QTableWidget(0, static_cast<int>(headers.size()));
    table->setObjectName(QStringLiteral("trackTable"));
    table->setHorizontalHeaderLabels(headers);
    table->horizontalHeader()->setSectionResizeMode(titleColumn, QHeaderView::Stretch);
    table->setColumnWidth(0, firstWidth);
    table->setColumnWidth(2, lastWidth);
    table->verticalHeader()->setVisible(false);
    // Tab goes on to the next field; the arrow keys move between cells.
    table->setTabKeyNavigation(false);
    return table;
}

void addRow(QTableWidget* table, const TrackRow& row, const QString& last)
{
    const int place = table->rowCount();
    table->insertRow(place);
    table->setRowHeight(place, 26);
    int column = 0;
    for (const QString& text : {row.number, row.title, last})
        table->setItem(place, column++, new QTableWidgetItem(text));
}

QList<TrackRow> rows(const QTableWidget* table)
{
    QList<TrackRow> shown;
    for (int row = 0; row < table->rowCount(); ++row)
        shown.append({cellText(table, row, 0), cellText(table, row, titleColumn)});
    return shown;
}

QList<TrackRow> rowsOf(const DiscToc& disc)
{
    QList<TrackRow> made;
    for (const TrackInfo& track : disc.tracks)
        made.append({twoDigits(track.number), trackName(track)});
    return made;
}

void showDisc(QTableWidget* table, const DiscToc& disc)
{
    table->setRowCount(0);
    for (const TrackInfo& track : disc.tracks) {
        const QString title = track.isData ? pickLang("（データトラック・音声ではないため取り込みません）",
                                                      "(data track - not audio, will not be ripped)")
                                           : trackName(track);
        addRow(table, {twoDigits(track.number), title}, playingTime(track.seconds));
    }
}

void showSheet(QTableWidget* table, const DiscToc& sheet)
{
    table->setRowCount(0);
    for (const TrackInfo& track : sheet.tracks)
        addRow(table, {twoDigits(track.number), track.title}, playingTime(track.seconds));
}

void fillTitles(QTableWidget* table, const QStringList& titles, bool emptyToo)
{
    const int count = static_cast<int>(std::min<qsizetype>(titles.size(), table->rowCount()));
    for (int row = 0; row < count; ++row) {
        const QString title = takenOver(titles[row]);
        if (emptyToo || !title.isEmpty())
            table->item(row, titleColumn)->setText(title);
    }
}

void takeTitles(const QTableWidget* table, QList<TrackInfo>& tracks)
{
    const auto count = std::min<qsizetype>(table->rowCount(), tracks.size());
    for (int row = 0; row < count; ++row) {
        const QString title = cellText(table, row, titleColumn);
        if (!title.isEmpty() && !looksGenerated(title))
            tracks[row].title = title;
    }
}

} // namespace tracktable
