#include "ui/AlbumFolder.h"

#include <gtest/gtest.h>

TEST(CleanedArtist, KeepsWhatStandsBeforeTheHyphen)
{
    EXPECT_EQ(cleanedArtist(QStringLiteral("Ada - Live")), QStringLiteral("Ada"));
    EXPECT_EQ(cleanedArtist(QStringLiteral("Ada   - Live - Again")), QStringLiteral("Ada"));
    EXPECT_EQ(cleanedArtist(QStringLiteral("Ada-Live")), QStringLiteral("Ada-Live"));
}

TEST(CleanedArtist, AFieldThatBeginsWithTheHyphenStaysWhole)
{
    EXPECT_EQ(cleanedArtist(QStringLiteral(" - Ada")), QStringLiteral(" - Ada"));
    EXPECT_EQ(cleanedArtist(QStringLiteral(" - Ada - Live")), QStringLiteral(" - Ada - Live"));
}

TEST(CleanedArtist, OnlyAnEmptyFieldIsUnknown)
{
    EXPECT_EQ(cleanedArtist(QString()), QStringLiteral("Unknown"));
    EXPECT_EQ(cleanedArtist(QStringLiteral("  - x")), QString()); // one blank stands before the cut
}

TEST(CleanedAlbum, LosesItsParenthesisedParts)
{
    EXPECT_EQ(cleanedAlbum(QStringLiteral("Blue  (Deluxe) Sky (2001)")), QStringLiteral("Blue Sky"));
    EXPECT_EQ(cleanedAlbum(QStringLiteral("Blue (open")), QStringLiteral("Blue (open"));
    EXPECT_EQ(cleanedAlbum(QStringLiteral("(a(b)c)")), QStringLiteral("c)"));
}

TEST(CleanedAlbum, UnknownStandsInBeforeTheCleaning)
{
    EXPECT_EQ(cleanedAlbum(QString()), QStringLiteral("Unknown"));
    EXPECT_EQ(cleanedAlbum(QStringLiteral("(only this)")), QString());
}

TEST(AlbumFolderName, LosesWhatNoFolderMayHave)
{
    EXPECT_EQ(albumFolderName(QStringLiteral("A\\B/C:D"), QStringLiteral("*E?\"F<G>|")),
              QStringLiteral("ABCD - EFG"));
    EXPECT_EQ(albumFolderName(QStringLiteral("%2"), QStringLiteral("%1")), QStringLiteral("%2 - %1"));
}

// A character of three bytes 85 times is 255 bytes.
TEST(AlbumFolderName, IsCutToWhatAFileSystemTakes)
{
    EXPECT_EQ(albumFolderName(QString(126, u'a'), QString(126, u'b')),
              QString(126, u'a') + QStringLiteral(" - ") + QString(126, u'b'))
        << "255 are not cut";
    EXPECT_EQ(albumFolderName(QString(126, u'a'), QString(127, u'b')),
              QString(126, u'a') + QStringLiteral(" - ") + QString(126, u'b'));
}

TEST(AlbumFolderName, AMillionCharactersAreNoWorkOfHours)
{
    EXPECT_EQ(albumFolderName(QString(4'000'000, u'a'), QString(4'000'000, u'/')), QString(255, u'a'));
}

TEST(LooksGenerated, OnlyTheWordBlanksAndDigits)
{
    EXPECT_TRUE(looksGenerated(QStringLiteral("Track 7")));
    EXPECT_TRUE(looksGenerated(QStringLiteral("Track \t 012")));
    EXPECT_FALSE(looksGenerated(QStringLiteral("Track7")));
    EXPECT_FALSE(looksGenerated(QStringLiteral("Track 7b")));
    EXPECT_FALSE(looksGenerated(QStringLiteral("track 7")));
    EXPECT_FALSE(looksGenerated(QStringLiteral(" Track 7")));
}
