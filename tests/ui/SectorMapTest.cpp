#include "ui/SectorMap.h"

#include "disc/DiscModel.h"

#include <QImage>

#include <gtest/gtest.h>

namespace {

constexpr QRgb background = 0xff050508;
constexpr QRgb notRead = 0xff0a0a10;
constexpr QRgb readAtOnce = 0xff4db8ff;
constexpr QRgb tookRereads = 0xffff8c42;
constexpr QRgb notConfirmed = 0xff8a1a1a;
constexpr QRgb mismatched = 0xffb84dff;

SectorResult cleanSector()
{
    SectorResult sector;
    sector.clean = true;
    return sector;
}

SectorResult rereadSector()
{
    SectorResult sector;
    sector.retries = 2;
    return sector;
}

SectorResult badSector()
{
    SectorResult sector;
    sector.bad = true;
    sector.retries = 20;
    return sector;
}

SectorResult mismatchSector()
{
    SectorResult sector = badSector();
    sector.mismatch = true;
    return sector;
}

/// A map of exactly the size given, whatever its minimum.
class SectorMapPixels : public ::testing::Test {
protected:
    void show(int width, int height)
    {
        map.setMinimumSize(0, 0);
        map.setFixedSize(width, height);
        map.show();
    }
    QRgb at(int x, int y) { return picture().pixel(x, y); }
    QImage picture() { return map.grab().toImage().convertToFormat(QImage::Format_ARGB32); }
    /// Middle of a cell of 5 pixels.
    QRgb cell(int column, int row) { return at(column * 5 + 2, row * 5 + 2); }
    void add(const SectorResult& sector, int count = 1)
    {
        for (int i = 0; i < count; ++i)
            map.addSector(sector);
    }

    SectorMap map;
};

} // namespace

TEST(SectorMapSize, MinimumIs200By120)
{
    const SectorMap map;
    EXPECT_EQ(map.minimumSize(), QSize(200, 120));
}

TEST_F(SectorMapPixels, StartsAsBlankCellsBetweenGridLines)
{
    show(50, 25);
    EXPECT_EQ(cell(0, 0), notRead);
    EXPECT_EQ(cell(9, 4), notRead);
    EXPECT_EQ(at(0, 2), background);
    EXPECT_EQ(at(4, 2), background);
    EXPECT_EQ(at(5, 2), background);
    EXPECT_EQ(at(1, 1), notRead);
    EXPECT_EQ(at(3, 3), notRead);
}

TEST_F(SectorMapPixels, EachStateHasItsColourAndCellsFillRowByRow)
{
    show(20, 10); // 4 by 2 cells
    map.setTotalSectors(8);
    add(cleanSector());
    add(rereadSector());
    add(badSector());
    add(mismatchSector());
    add(cleanSector());
    EXPECT_EQ(cell(0, 0), readAtOnce);
    EXPECT_EQ(cell(1, 0), tookRereads);
    EXPECT_EQ(cell(2, 0), notConfirmed);
    EXPECT_EQ(cell(3, 0), mismatched);
    EXPECT_EQ(cell(0, 1), readAtOnce);
    EXPECT_EQ(cell(1, 1), notRead);
}

TEST_F(SectorMapPixels, RetriesBelowZeroCountAsReadAtOnce)
{
    show(20, 10);
    map.setTotalSectors(8);
    SectorResult sector;
    sector.retries = -1;
    add(sector);
    EXPECT_EQ(cell(0, 0), readAtOnce);
}

TEST_F(SectorMapPixels, TheWorstSectorColoursItsCellAndItCannotFallBack)
{
    show(5, 5); // one cell
    map.setTotalSectors(3);
    add(cleanSector());
    EXPECT_EQ(cell(0, 0), readAtOnce);
    add(mismatchSector());
    add(rereadSector());
    EXPECT_EQ(cell(0, 0), mismatched);
}

TEST_F(SectorMapPixels, ThreeHundredThousandSectorsOnAThousandCells)
{
    show(250, 100); // 50 by 20 cells, 300 sectors each
    map.setTotalSectors(300000);
    add(cleanSector(), 299);
    EXPECT_EQ(cell(0, 0), readAtOnce);
    EXPECT_EQ(cell(1, 0), notRead);
    add(rereadSector());
    EXPECT_EQ(cell(0, 0), tookRereads);
    EXPECT_EQ(cell(1, 0), notRead);
    add(badSector());
    EXPECT_EQ(cell(1, 0), notConfirmed);
}

TEST_F(SectorMapPixels, SectorsPerCellIsTheCeiling)
{
    show(20, 10); // 8 cells; 9 sectors make two a cell
    map.setTotalSectors(9);
    add(cleanSector(), 3);
    EXPECT_EQ(cell(1, 0), readAtOnce);
    EXPECT_EQ(cell(2, 0), notRead);
}

TEST_F(SectorMapPixels, ASectorBeyondTheGridIsDroppedFromThePicture)
{
    show(10, 5); // two cells
    map.setTotalSectors(2);
    add(cleanSector(), 2);
    const QImage before = picture();
    add(mismatchSector(), 5);
    EXPECT_EQ(picture(), before);
}

TEST_F(SectorMapPixels, OnePixelWideHasOneColumnWithoutGap)
{
    show(1, 50);
    map.setTotalSectors(10); // 10 rows of 5 pixels; the width of 1 takes the gap away
    add(cleanSector(), 1);
    EXPECT_EQ(at(0, 0), readAtOnce);
    EXPECT_EQ(at(0, 4), readAtOnce);
    EXPECT_EQ(at(0, 5), notRead);
}

TEST_F(SectorMapPixels, TwelvePixelsHighAreTwoRowsOfSix)
{
    show(20, 12);
    map.setTotalSectors(8);
    add(cleanSector(), 5);
    EXPECT_EQ(at(2, 0), background);
    EXPECT_EQ(at(2, 1), readAtOnce);
    EXPECT_EQ(at(2, 4), readAtOnce);
    EXPECT_EQ(at(2, 5), background);
    EXPECT_EQ(at(2, 6), background);
    EXPECT_EQ(at(2, 7), readAtOnce); // fifth sector, second row
    EXPECT_EQ(at(7, 7), notRead);
}

TEST_F(SectorMapPixels, WhatTheGridLeavesOverIsBackground)
{
    show(23, 5); // 4 columns of 5
    EXPECT_EQ(at(21, 2), background);
    EXPECT_EQ(at(17, 2), notRead);
}

TEST_F(SectorMapPixels, AResizeWipesThePictureAndGoesOnAtTheRightPlace)
{
    show(20, 10); // 8 cells, one sector each
    map.setTotalSectors(8);
    add(cleanSector(), 4);
    map.setFixedSize(40, 10); // 16 cells
    EXPECT_EQ(cell(0, 0), notRead);
    EXPECT_EQ(cell(3, 0), notRead);
    add(rereadSector());
    EXPECT_EQ(cell(4, 0), tookRereads);

    map.setFixedSize(10, 10); // 4 cells of two sectors; five sectors are done
    EXPECT_EQ(cell(0, 1), notRead);
    add(badSector());
    EXPECT_EQ(cell(0, 1), notConfirmed); // the sixth sector belongs to the third cell
}

TEST_F(SectorMapPixels, ANewTotalStartsOver)
{
    show(20, 10);
    map.setTotalSectors(8);
    add(badSector(), 3);
    map.setTotalSectors(8);
    EXPECT_EQ(cell(0, 0), notRead);
    add(cleanSector());
    EXPECT_EQ(cell(0, 0), readAtOnce);
}

TEST_F(SectorMapPixels, WithoutATotalEverySectorTakesACell)
{
    show(20, 10);
    map.setTotalSectors(0);
    add(cleanSector(), 2);
    EXPECT_EQ(cell(1, 0), readAtOnce);
    EXPECT_EQ(cell(2, 0), notRead);
}
