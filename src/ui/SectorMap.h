#pragma once

#include <QList>
#include <QWidget>

struct SectorResult;
class DrawThrottle;

/// A picture of the disc: a grid of small cells, each the worst state of the
/// sectors that fall into it. Sectors count in the order in which they arrive,
/// whatever their address. Cost depends on the widget's size, not on the disc.
///
/// Where a pixel that sizes are counted in is not a whole number of the screen's,
/// the grid is counted in the screen's, so that all cells are of one size there, too.
class SectorMap : public QWidget {
    Q_OBJECT
public:
    explicit SectorMap(QWidget* parent = nullptr);

    /// Starts an empty map for so many sectors; 0 leaves it blank.
    void setTotalSectors(int total);
    void addSector(const SectorResult& sector);

protected:
    void paintEvent(QPaintEvent* event) override;
    /// A new size means a new grid: all states so far are lost, the position is not.
    void resizeEvent(QResizeEvent* event) override;

private:
    void computeGrid();

    QList<int> cells;
    int totalSectors = 0;
    int doneSectors = 0;
    int cols = 1;
    int rows = 1;
    int sectorsPerCell = 1;
    qreal gridRatio = 1; ///< the screen's pixels to one of ours, as the grid was made
    DrawThrottle* drawing;
};
