#include "ui/ColouredCells.h"
#include "ui/StyleSheet.h"

#include <QImage>
#include <QTableWidget>

#include <gtest/gtest.h>

namespace {

/// How many points of a picture come close to a colour.
int pointsLike(const QImage& picture, const QColor& colour)
{
    int found = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QColor point = picture.pixelColor(x, y);
            found += std::abs(point.red() - colour.red()) + std::abs(point.green() - colour.green())
                         + std::abs(point.blue() - colour.blue())
                     < 60;
        }
    }
    return found;
}

QImage paintedCell(const QString& text, const QColor& colour, bool selected = false)
{
    QTableWidget table(1, 1);
    table.setObjectName(QStringLiteral("trackTable"));
    table.setStyleSheet(styleSheetText());
    table.setItemDelegate(new ColouredCells(&table));
    auto* item = new QTableWidgetItem(text);
    if (colour.isValid())
        item->setForeground(colour);
    table.setItem(0, 0, item);
    item->setSelected(selected);
    table.resize(300, 120);
    table.setColumnWidth(0, 200);
    return table.viewport()->grab().toImage();
}

} // namespace

TEST(ColouredCells, AColourOfTheItemIsSeenThroughTheStyleSheet)
{
    const QColor orange(0xff, 0x8c, 0x42);
    EXPECT_GT(pointsLike(paintedCell(QStringLiteral("WWWW Mismatch"), orange), orange), 20);
    EXPECT_GT(pointsLike(paintedCell(QStringLiteral("WWWW Mismatch"), orange, true), orange), 20);
}

TEST(ColouredCells, AnItemWithoutAColourKeepsThatOfTheStyleSheet)
{
    const QColor quiet(0x90, 0xb8, 0xd8);
    EXPECT_GT(pointsLike(paintedCell(QStringLiteral("WWWW Data"), QColor()), quiet), 20);
}

TEST(ColouredCells, ATextThatIsTooLongIsCutInsideTheCell)
{
    const QColor orange(0xff, 0x8c, 0x42);
    const QImage picture = paintedCell(QString(200, QLatin1Char('W')), orange);
    EXPECT_EQ(pointsLike(picture.copy(200, 0, picture.width() - 200, picture.height()), orange), 0);
}
