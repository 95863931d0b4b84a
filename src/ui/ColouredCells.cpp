#include "ui/ColouredCells.h"

#include <QApplication>
#include <QBrush>
#include <QPainter>

void ColouredCells::paint(QPainter* painter, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const
{
    const QVariant colour = index.data(Qt::ForegroundRole);
    if (!colour.isValid()) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    const QStyle* style = cell.widget ? cell.widget->style() : QApplication::style();
    const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, &cell, cell.widget) + 1;
    // Where the style puts the text of the other cells, which is not where it says.
    const QRect place = cell.rect.adjusted(margin, 0, -margin, 0);
    const QString text = cell.fontMetrics.elidedText(cell.text, cell.textElideMode, place.width());
    cell.text.clear();
    style->drawControl(QStyle::CE_ItemViewItem, &cell, painter, cell.widget);

    painter->save();
    painter->setFont(cell.font);
    painter->setPen(colour.value<QBrush>().color());
    painter->drawText(place, static_cast<int>(cell.displayAlignment), text);
    painter->restore();
}
