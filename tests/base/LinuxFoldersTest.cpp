#include "base/FreeSpace.h"
#include "base/UniqueFolder.h"
#include "support/Tool.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

TEST(LinuxFolders, AFileSystemThatKnowsOfNoBytesTellsNothing)
{
    const ToolResult df =
        runTool(QStringLiteral("df"), {QStringLiteral("--output=avail"), QStringLiteral("/proc")});
    ASSERT_EQ(df.output.trimmed().split('\n').constLast().trimmed(), "0");
    EXPECT_FALSE(freeSpaceBytes(QStringLiteral("/proc")));
}

TEST(LinuxFolders, ALinkToAFolderIsAFolder)
{
    const QTemporaryDir place;
    ASSERT_TRUE(QFile::link(place.path(), place.path() + QStringLiteral("/x")));
    EXPECT_EQ(makeUniqueFolder(place.path(), QStringLiteral("x")).path,
              place.path() + QStringLiteral("/x - Copy"));
}

// A name has 255 bytes at most; "漢" has three, " - Copy" seven.
TEST(LinuxFolders, ALongNameIsCutAtAWholeCharacterForWhatComesBehindIt)
{
    const QTemporaryDir place;
    const QString kanji(85, QChar(u'漢'));
    EXPECT_TRUE(makeUniqueFolder(place.path(), kanji).created);
    const MadeFolder made = makeUniqueFolder(place.path(), kanji);
    EXPECT_EQ(made.path, place.path() + u'/' + QString(82, QChar(u'漢')) + QStringLiteral(" - Copy"));
    EXPECT_TRUE(made.created);
}
