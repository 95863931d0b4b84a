#include "base/FreeSpace.h"

#include "support/Tool.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

/// What df tells of a folder.
qint64 listedBytes(const QString& folder)
{
    const ToolResult df = runTool(
        QStringLiteral("df"), {QStringLiteral("--block-size=1"), QStringLiteral("--output=avail"), folder});
    return df.output.trimmed().split('\n').constLast().toLongLong();
}

} // namespace

TEST(FreeSpace, IsWhatTheSystemLists)
{
    const QTemporaryDir folder;
    const std::optional<quint64> told = freeSpaceBytes(folder.path());
    ASSERT_TRUE(told);
    // Other programs write between the two looks.
    constexpr qint64 tolerance = qint64{2} << 30;
    EXPECT_NEAR(static_cast<double>(*told), static_cast<double>(listedBytes(folder.path())), tolerance);
}

TEST(FreeSpace, AFolderThatIsNotThereTellsNothing)
{
    const QTemporaryDir folder;
    EXPECT_FALSE(freeSpaceBytes(folder.filePath(QStringLiteral("missing"))));
}

TEST(FreeSpace, ATestCanPretendAndPutItBack)
{
    const QTemporaryDir folder;
    pretendFreeSpace(12345);
    EXPECT_EQ(freeSpaceBytes(folder.path()), 12345U);
    pretendFreeSpace(0);
    EXPECT_FALSE(freeSpaceBytes(folder.path()));
    pretendFreeSpace(std::nullopt);
    EXPECT_TRUE(freeSpaceBytes(folder.path()));
}
