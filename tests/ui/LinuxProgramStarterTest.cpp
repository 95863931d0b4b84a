#include "ui/Restart.h"

#include "support/DiscMaker.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

TEST(LinuxProgramStarter, TheProgramStartedLivesOnItsOwn)
{
    QTemporaryDir folder;
    const QString script =
        writeFile(folder.path(), QStringLiteral("a program"),
                  "#!/bin/sh\necho \"$# $(pwd -P)\" > \"$0.tmp\" && mv \"$0.tmp\" \"$0.ran\"\n");
    ASSERT_TRUE(QFile::setPermissions(script, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    ProgramStarter().start(script);
    QFile trace(script + QStringLiteral(".ran"));
    ASSERT_TRUE(QTest::qWaitFor([&trace] { return trace.exists(); }, 10000));
    ASSERT_TRUE(trace.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromLocal8Bit(trace.readAll()).trimmed(),
              QStringLiteral("0 ") + QDir(QDir::currentPath()).canonicalPath());
}
