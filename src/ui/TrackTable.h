#pragma once

#include "ui/PageValues.h"

#include <QList>
#include <QStringList>

class QTableWidget;
struct DiscToc;
struct TrackInfo;

/// The tables of tracks: a number, a title and one thing more, a row a track.
namespace tracktable {

inline constexpr int titleColumn = 1;

/// An empty table, the title's column taking what room there is.
QTableWidget* make(const QStringList& headers, int firstWidth, int lastWidth);
void addRow(QTableWidget* table, const TrackRow& row, const QString& last);

QList<TrackRow> rows(const QTableWidget* table);
/// A disc's tracks with a title for each, "Track 7" where it has none.
QList<TrackRow> rowsOf(const DiscToc& disc);

/// The tracks with their times, a data track as one that will not be ripped.
void showDisc(QTableWidget* table, const DiscToc& disc);
/// Likewise, with no title but those of the sheet.
void showSheet(QTableWidget* table, const DiscToc& sheet);

/// Puts titles where there is a row for them.
void fillTitles(QTableWidget* table, const QStringList& titles, bool emptyToo);
/// Gives the tracks the titles of the table, but for empty and generated ones.
void takeTitles(const QTableWidget* table, QList<TrackInfo>& tracks);

} // namespace tracktable
