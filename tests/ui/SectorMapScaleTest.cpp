// The sector map on screens whose pixels are not those that sizes are counted in.

#include "ui/SectorMap.h"

#include "disc/DiscModel.h"

#include <QCoreApplication>
#include <QImage>
#include <QProcess>
#include <QProcessEnvironment>

#include <algorithm>
#include <cstdio>
#include <utility>

#include <gtest/gtest.h>

namespace {

constexpr QRgb readAtOnce = 0xff4db8ff;

/// A map of 40 by 24 cells, all read, as a screen of this scale shows it.
QImage shownAt(qreal scale)
{
    constexpr int columns = 40;
    constexpr int rows = 24;
    SectorMap map;
    map.setFixedSize(columns * 5, rows * 5);
    map.show();
    map.setTotalSectors(columns * rows);
    for (int sector = 0; sector < columns * rows; ++sector)
        map.addSector(SectorResult());
    QImage screen((QSizeF(map.size()) * scale).toSize(), QImage::Format_ARGB32);
    screen.setDevicePixelRatio(scale);
    screen.fill(Qt::white);
    map.render(&screen);
    return screen;
}

/// The lengths of the stretches of one kind along a line: of cells, or of what is
/// between them.
QList<int> stretches(const QList<bool>& line, bool ofCells)
{
    QList<int> lengths;
    int length = 0;
    const qsizetype first = line.indexOf(true);
    const qsizetype last = line.lastIndexOf(true);
    for (qsizetype i = std::max<qsizetype>(first, 0); i <= last + 1; ++i) {
        if (i <= last && line[i] == ofCells) {
            ++length;
        } else if (length > 0) {
            lengths.append(length);
            length = 0;
        }
    }
    return lengths;
}

QList<bool> across(const QImage& screen, int y)
{
    QList<bool> line;
    for (int x = 0; x < screen.width(); ++x)
        line.append(screen.pixel(x, y) == readAtOnce);
    return line;
}

QList<bool> down(const QImage& screen, int x)
{
    QList<bool> line;
    for (int y = 0; y < screen.height(); ++y)
        line.append(screen.pixel(x, y) == readAtOnce);
    return line;
}

} // namespace

TEST(SectorMapScale, CellsAreOfOneSizeWhateverTheScale)
{
    // 5 pixels of ours are 6.25, 7.5 and 8.75 of the screen's; lines are two thick.
    for (const auto& [scale, cell] : {std::pair{1.25, 4}, {1.5, 5}, {1.75, 6}}) {
        SCOPED_TRACE(scale);
        const QImage screen = shownAt(scale);
        constexpr int insideTheFirstCell = 3;
        EXPECT_EQ(stretches(across(screen, insideTheFirstCell), true), QList<int>(40, cell));
        EXPECT_EQ(stretches(across(screen, insideTheFirstCell), false), QList<int>(39, 2));
        EXPECT_EQ(stretches(down(screen, insideTheFirstCell), true), QList<int>(24, cell));
        EXPECT_EQ(stretches(down(screen, insideTheFirstCell), false), QList<int>(23, 2));
    }
}

TEST(SectorMapScale, WholeScalesOnlyEnlarge)
{
    for (const int scale : {1, 2, 3}) {
        SCOPED_TRACE(scale);
        const QImage screen = shownAt(scale);
        EXPECT_EQ(screen, shownAt(1).scaled(screen.size()).convertToFormat(QImage::Format_ARGB32));
        EXPECT_EQ(stretches(across(screen, 2 * scale), true), QList<int>(40, 3 * scale));
        EXPECT_EQ(stretches(across(screen, 2 * scale), false), QList<int>(39, 2 * scale));
    }
}

/// Run by the next test once more in a process whose screen has another scale.
TEST(SectorMapScale, TheMapFillsItsRoom)
{
    SectorMap map;
    map.setFixedSize(203, 121);
    map.show();
    map.setTotalSectors(1);
    const qreal scale = map.devicePixelRatioF();
    for (int sector = 0; sector < 2000; ++sector) // more than there are cells
        map.addSector(SectorResult());
    const QImage screen = map.grab().toImage();
    const auto expectFilled = [scale](const QList<bool>& line) {
        const auto pitch = static_cast<qsizetype>(5 * scale);
        EXPECT_LT(line.size() - line.lastIndexOf(true), 2 * pitch);
        const QList<int> cells = stretches(line, true);
        ASSERT_GT(cells.size(), 20);
        EXPECT_EQ(cells, QList<int>(cells.size(), cells.constFirst()));
        const QList<int> lines = stretches(line, false);
        EXPECT_EQ(lines, QList<int>(lines.size(), lines.constFirst()));
    };
    constexpr int insideTheFirstCell = 3;
    expectFilled(across(screen, insideTheFirstCell));
    expectFilled(down(screen, insideTheFirstCell));
    std::printf("scale %g\n", scale);
}

TEST(SectorMapScale, TheMapFillsItsRoomOnScreensOfOtherScales)
{
    for (const char* scale : {"1.25", "1.5", "1.75", "2"}) {
        QProcess again;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_SCALE_FACTOR"), QLatin1String(scale));
        again.setProcessEnvironment(environment);
        again.start(QCoreApplication::applicationFilePath(),
                    {QStringLiteral("--gtest_filter=SectorMapScale.TheMapFillsItsRoom")});
        ASSERT_TRUE(again.waitForFinished(60000));
        const QByteArray said = again.readAllStandardOutput();
        EXPECT_EQ(again.exitCode(), 0) << said.toStdString();
        EXPECT_TRUE(said.contains(QByteArray("scale ") + scale)) << said.toStdString();
    }
}
