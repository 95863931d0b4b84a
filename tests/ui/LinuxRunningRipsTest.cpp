// The name of a file that is open goes at once here.

#include "ui/RunningRipsStage.h"

#include "support/StuckFile.h"
#include "ui/AbruptEnd.h"
#include "ui/RecordedEnd.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTest>

class LinuxRunningRips : public RunningRipsStage {};

TEST_F(LinuxRunningRips, ARipThatHangsIsLeftBehindWithoutItsUnfinishedFile)
{
    ASSERT_TRUE(QDir(folder.path()).mkpath(QStringLiteral("out")));
    const QString unfinished = output() + QStringLiteral("/01. Alpha.wav");
    StuckFile file(unfinished);
    ASSERT_TRUE(file.isMade());
    bool removed = false;
    RecordedEnd end([&] {
        removed = !QFileInfo::exists(unfinished);
        file.letGo();
    });
    const AbruptEndOverride inPlace(end);
    CdDrive drive;
    auto rips = std::make_unique<RunningRips>();
    rips->start(imageRip(drive));
    ASSERT_TRUE(QTest::qWaitFor([&file] { return file.isWrittenTo(); }, 60000));
    QElapsedTimer time;
    time.start();
    rips.reset();
    EXPECT_EQ(end.calls, 1);
    EXPECT_TRUE(removed);
    EXPECT_GE(time.elapsed(), 3500) << "the rip was given its time";
}
