#include "rip/OutputNaming.h"
#include "rip/RipOrder.h"
#include "rip/RipWorker.h"
#include "support/Language.h"

#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

/// The file name that a rule gives, without its folder.
QString named(const char* rule, int number, const QString& title,
              const QString& artist = QStringLiteral("Artist"),
              const QString& album = QStringLiteral("Album"),
              const QString& year = QStringLiteral("2001-05-12"))
{
    RipOrder order;
    order.outputFolder = QStringLiteral("/out");
    order.artist = artist;
    order.album = album;
    order.year = year;
    order.namingRule = QString::fromUtf8(rule);
    const QString path = outputBasePath(order, number, title);
    EXPECT_TRUE(path.startsWith(QStringLiteral("/out/")));
    return path.mid(5);
}

} // namespace

TEST(OutputNaming, AnEmptyRuleIsTheDefault)
{
    EXPECT_EQ(named("", 3, QStringLiteral("Song")), QStringLiteral("03. Song"));
    EXPECT_EQ(named("   ", 3, QStringLiteral("Song")), QStringLiteral("03. Song"));
}

TEST(OutputNaming, TheTrackAloneGivesItsNumber)
{
    EXPECT_EQ(named("{track}", 7, QStringLiteral("Song")), QStringLiteral("07"));
    EXPECT_EQ(named("{track}", 100, QStringLiteral("Song")), QStringLiteral("100"));
}

TEST(OutputNaming, ForbiddenCharactersAreRemoved)
{
    EXPECT_EQ(named("{track}. {title}", 7, QStringLiteral("What?")), QStringLiteral("07. What"));
    EXPECT_EQ(named("{track}. {title}", 7, QStringLiteral("a\\b/c:d*e?f\"g<h>i|j")),
              QStringLiteral("07. abcdefghij"));
    EXPECT_EQ(named("{artist}/{title}", 7, QStringLiteral("Song")), QStringLiteral("ArtistSong"))
        << "no subfolders";
}

TEST(OutputNaming, ATitleOfDotsLeavesTheNumber)
{
    EXPECT_EQ(named("{track}. {title}", 7, QStringLiteral("...")), QStringLiteral("07"));
}

TEST(OutputNaming, WhenNothingRemainsTheFallbackKeepsItsTrailingBlank)
{
    EXPECT_EQ(named("{title}", 7, QStringLiteral("???")), QStringLiteral("07. "));
}

TEST(OutputNaming, TheYearIsCutToFourCharacters)
{
    EXPECT_EQ(named("{year} - {title}", 7, QStringLiteral("Song")), QStringLiteral("2001 - Song"));
}

TEST(OutputNaming, ATokenInsideATitleIsReplacedByTheLaterSteps)
{
    EXPECT_EQ(named("{title}", 1, QStringLiteral("x{album}")), QStringLiteral("xAlbum"));
    EXPECT_EQ(named("{title}", 1, QStringLiteral("x{track}")), QStringLiteral("x{track}"))
        << "already replaced";
}

TEST(OutputNaming, EmptyValuesLeaveTheirSeparators)
{
    EXPECT_EQ(named("{artist} - {title}", 1, QStringLiteral("Song"), QString()), QStringLiteral("- Song"));
    EXPECT_EQ(named("{title} - {artist}", 1, QStringLiteral("Song"), QString()), QStringLiteral("Song -"));
}

TEST(OutputNaming, TokensAreCaseSensitiveAndAllOccurrencesCount)
{
    EXPECT_EQ(named("{Track} {track} {track}", 5, QString()), QStringLiteral("{Track} 05 05"));
}

TEST(UniqueFolder, NamesGoOnWhereTheyAreTaken)
{
    speak(2);
    QTemporaryDir folder;
    const QString base = folder.path();
    for (const char* expected : {"x", "x - Copy", "x - Copy (2)", "x - Copy (3)"}) {
        const QString made = RipWorker::uniqueFolder(base, QStringLiteral("x"));
        EXPECT_EQ(made, base + QLatin1Char('/') + QLatin1String(expected));
        EXPECT_TRUE(QFileInfo(made).isDir());
    }
}

TEST(UniqueFolder, TheSuffixFollowsTheLanguage)
{
    speak(1);
    QTemporaryDir folder;
    RipWorker::uniqueFolder(folder.path(), QStringLiteral("x"));
    EXPECT_EQ(RipWorker::uniqueFolder(folder.path(), QStringLiteral("x")),
              folder.path() + QStringLiteral("/x - コピー"));
}

TEST(UniqueFolder, AnEmptyNameGivesAPathThatEndsInASlash)
{
    QTemporaryDir folder;
    EXPECT_EQ(RipWorker::uniqueFolder(folder.path() + QStringLiteral("/new"), QString()),
              folder.path() + QStringLiteral("/new/"));
}

TEST(UniqueFolder, AnEmptyNameInAFolderThatIsThereIsACopyInIt)
{
    speak(2);
    QTemporaryDir folder;
    EXPECT_EQ(RipWorker::uniqueFolder(folder.path(), QString()), folder.path() + QStringLiteral("/ - Copy"));
}
