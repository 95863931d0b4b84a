#include "ui/StartStage.h"

class Start : public StartStage {};

TEST_F(Start, NamesIconAndFontAreInForceWhenTheWindowShows)
{
    const auto said = start();
    EXPECT_NE(said["name at first"], "Tarvel CD Ripper");
    EXPECT_EQ(said["name"], "Tarvel CD Ripper");
    EXPECT_EQ(said["version"], TARVEL_VERSION) << "of the program, and of its build and packages";
    EXPECT_EQ(said["organisation"], "VEDRANO");
    EXPECT_EQ(said["window"], "Tarvel CD Ripper");
    EXPECT_EQ(said["icon"], "there");
    EXPECT_EQ(said["font"], "Segoe UI 9");
}
