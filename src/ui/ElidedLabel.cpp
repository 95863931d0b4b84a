#include "ui/ElidedLabel.h"

#include <QPainter>
#include <QStyle>

QSize ElidedLabel::minimumSizeHint() const
{
    return {0, QLabel::minimumSizeHint().height()};
}

QString ElidedLabel::shownText() const
{
    QStringList lines = text().split(QLatin1Char('\n'));
    for (QString& line : lines)
        line = fontMetrics().elidedText(line, Qt::ElideMiddle, contentsRect().width());
    return lines.join(QLatin1Char('\n'));
}

void ElidedLabel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    drawFrame(&painter);
    const Qt::Alignment place = QStyle::visualAlignment(layoutDirection(), alignment());
    style()->drawItemText(&painter, contentsRect(), static_cast<int>(place), palette(), isEnabled(),
                          shownText(), foregroundRole());
}
