// Names in the file system that are no files.

#include "disc/CdDrive.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

TEST(LinuxCueImage, DevicesAndPipesYieldNothing)
{
    EXPECT_TRUE(CdDrive::parseCue(QStringLiteral("/dev/zero")).tracks.isEmpty());
    const QTemporaryDir folder;
    const QString pipe = folder.filePath(QStringLiteral("pipe.cue"));
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    EXPECT_TRUE(CdDrive::parseCue(pipe).tracks.isEmpty());
}
