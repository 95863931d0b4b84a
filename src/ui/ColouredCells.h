#pragma once

#include <QStyledItemDelegate>

/// Draws the cells of a table whose items carry a foreground colour in that
/// colour, which the rule of a style sheet for items would cover up.
class ColouredCells : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
};
