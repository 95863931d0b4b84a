#include "tour/ContactSheet.h"

#include <QPainter>

#include <algorithm>

bool saveContactSheet(const QString& path, const QList<Shot>& shots, int columns, int width)
{
    constexpr int gap = 16;
    constexpr int captionHeight = 24;
    QList<QImage> pictures;
    for (const Shot& shot : shots) {
        QImage image = shot.picture.toImage();
        image.setDevicePixelRatio(1);
        pictures << (image.width() > width ? image.scaledToWidth(width, Qt::SmoothTransformation) : image);
    }
    const auto heightOfRow = [&](qsizetype first) {
        int height = 0;
        for (qsizetype i = first; i < std::min(first + columns, pictures.size()); ++i)
            height = std::max(height, pictures[i].height());
        return height + captionHeight + gap;
    };
    int height = gap;
    for (qsizetype first = 0; first < pictures.size(); first += columns)
        height += heightOfRow(first);

    QImage sheet(columns * (width + gap) + gap, height, QImage::Format_RGB32);
    sheet.fill(QColor(0x20, 0x22, 0x26));
    QPainter painter(&sheet);
    painter.setPen(Qt::white);
    int top = gap;
    for (qsizetype first = 0; first < pictures.size(); first += columns) {
        for (qsizetype i = first; i < std::min(first + columns, pictures.size()); ++i) {
            const int left = gap + static_cast<int>(i - first) * (width + gap);
            painter.drawText(QRect(left, top, width, captionHeight), Qt::AlignVCenter, shots[i].caption);
            painter.drawImage(left, top + captionHeight, pictures[i]);
        }
        top += heightOfRow(first);
    }
    painter.end();
    return sheet.save(path);
}
