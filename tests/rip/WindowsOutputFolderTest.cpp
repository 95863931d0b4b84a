#include <gtest/gtest.h>

#include "RunRecorder.h"
#include "support/Language.h"

#include <QDir>

// Where Windows alone has places that are not there.

TEST(WindowsOutputFolder, ThatIsNowhereIsToldBeforeASectorIsRead)
{
    ASSERT_FALSE(QDir(QStringLiteral("Q:/")).exists());
    speak(2);
    const QTemporaryDir folder;
    ImageDescription description;
    description.tracks = {{0, QStringLiteral("One")}};
    const QString cue = writeImage(folder.path(), description, makeAudio(60, 2));
    for (const char* name : {"//127.0.0.1/nowhere/Album", "Q:/Album"}) {
        const QString output = QString::fromLatin1(name);
        RunRecorder run;
        run.rip(cue, OutputFlac, output);
        EXPECT_EQ(run.errors, QStringList{QStringLiteral("Cannot create the output folder: ") + output});
        EXPECT_EQ(run.sectors.size(), 0);
        ASSERT_EQ(run.results.size(), 1);
        EXPECT_FALSE(run.results[0].ok);
        EXPECT_EQ(run.finishedCount, 1);
    }
}
