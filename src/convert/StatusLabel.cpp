#include "convert/StatusLabel.h"

#include <QPainter>
#include <QTextLayout>
#include <QTextOption>

#include <algorithm>
#include <cmath>

namespace {

/// File names may hold line feeds, which a layout of lines does not know.
QString paragraphs(QString text)
{
    return text.replace(u'\n', QChar::LineSeparator);
}

} // namespace

StatusLabel::StatusLabel(QWidget* parent) : QLabel(parent)
{
    setWordWrap(true);
    setTextFormat(Qt::PlainText);
    // The longest word must not decide on the width.
    setMinimumWidth(1);
}

int StatusLabel::heightForWidth(int width) const
{
    ensurePolished();
    const QMargins around = contentsMargins() + margin();
    QTextLayout lines(paragraphs(text()), font());
    return static_cast<int>(std::ceil(layOut(lines, width - around.left() - around.right()))) + around.top()
           + around.bottom();
}

void StatusLabel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    drawFrame(&painter);
    const QRect area = contentsRect().marginsRemoved(QMargins() + margin());
    QTextLayout lines(paragraphs(text()), font());
    const qreal height = layOut(lines, area.width());
    painter.setPen(palette().color(foregroundRole()));
    lines.draw(&painter,
               QPointF(area.left(), area.top() + std::max(0.0, std::floor((area.height() - height) / 2))));
}

qreal StatusLabel::layOut(QTextLayout& lines, int width) const
{
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setTextDirection(layoutDirection());
    lines.setTextOption(option);
    qreal height = 0;
    lines.beginLayout();
    for (QTextLine line = lines.createLine(); line.isValid(); line = lines.createLine()) {
        line.setLineWidth(width);
        line.setPosition(QPointF(0, height));
        height += line.height();
    }
    lines.endLayout();
    return height;
}
