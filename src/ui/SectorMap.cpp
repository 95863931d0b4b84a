#include "ui/SectorMap.h"

#include "disc/DiscModel.h"
#include "ui/DrawThrottle.h"

#include <QColor>
#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

/// In rising order of severity; the values index the colours.
enum CellState : int {
    NotRead,
    ReadAtOnce,
    TookRereads,
    NotConfirmed,
    Mismatch,
};

constexpr std::array<QRgb, 5> stateColours{0xff0a0a10, 0xff4db8ff, 0xffff8c42, 0xff8a1a1a, 0xffb84dff};
constexpr QRgb backgroundColour = qRgb(5, 5, 8);
constexpr int nominalCellPixels = 5;

/// How many of the pixels that the grid is counted in make one of ours.
qreal gridScale(qreal pixelRatio)
{
    return pixelRatio == std::floor(pixelRatio) ? 1 : pixelRatio;
}

CellState stateOf(const SectorResult& sector)
{
    if (sector.mismatch)
        return Mismatch;
    if (sector.bad)
        return NotConfirmed;
    return sector.retries > 0 ? TookRereads : ReadAtOnce;
}

} // namespace

SectorMap::SectorMap(QWidget* parent) : QWidget(parent), drawing(new DrawThrottle([this] { update(); }, this))
{
    setMinimumSize(200, 120);
}

void SectorMap::setTotalSectors(int total)
{
    totalSectors = total;
    doneSectors = 0;
    computeGrid();
    update();
}

void SectorMap::addSector(const SectorResult& sector)
{
    const int index = doneSectors++;
    if (!cells.isEmpty() && sectorsPerCell > 0) {
        const int cell = index / sectorsPerCell;
        if (cell < cells.size())
            cells[cell] = std::max(cells[cell], static_cast<int>(stateOf(sector)));
    }
    drawing->request();
}

void SectorMap::computeGrid()
{
    gridRatio = devicePixelRatioF();
    const qreal scale = gridScale(gridRatio);
    const auto cellsIn = [scale](int length) {
        const int cell = std::max(static_cast<int>(nominalCellPixels * scale), 1);
        return std::max(static_cast<int>(std::max(length, 1) * scale) / cell, 1);
    };
    cols = cellsIn(width());
    rows = cellsIn(height());
    const int count = cols * rows;
    sectorsPerCell = totalSectors <= 0 ? 1 : std::max((totalSectors - 1 + count) / count, 1);
    cells.fill(NotRead, count);
}

void SectorMap::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    computeGrid();
}

void SectorMap::paintEvent(QPaintEvent*)
{
    if (gridRatio != devicePixelRatioF())
        computeGrid();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.fillRect(rect(), QColor::fromRgb(backgroundColour));
    if (cells.isEmpty() || cols < 1)
        return;

    const QTransform toScreen = painter.deviceTransform();
    const qreal scale = gridScale(toScreen.m11());
    if (scale != 1) {
        const QTransform wholePixels =
            QTransform::fromTranslate(std::round(toScreen.dx()), std::round(toScreen.dy()));
        painter.setWorldTransform(wholePixels * toScreen.inverted());
    }
    const int cellWidth = std::max(static_cast<int>(width() * scale) / cols, 1);
    const int cellHeight = std::max(static_cast<int>(height() * scale) / rows, 1);
    const int gap = cellWidth > 2 && cellHeight > 2 ? std::max(static_cast<int>(scale), 1) : 0;
    const QSize size(std::max(cellWidth - 2 * gap, 1), std::max(cellHeight - 2 * gap, 1));
    for (int k = 0; k < cells.size(); ++k) {
        const QPoint corner((k % cols) * cellWidth + gap, (k / cols) * cellHeight + gap);
        painter.fillRect(QRect(corner, size),
                         QColor::fromRgb(stateColours[static_cast<std::size_t>(cells[k])]));
    }
}
