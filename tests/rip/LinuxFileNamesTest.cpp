// Names of sources and results that only some systems let a file have.

#include "rip/FileRun.h"

#include "RunParts.h"
#include "RunRecorder.h"
#include "codecs/DecoderFiles.h"
#include "support/DiscMaker.h"
#include "support/Language.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

TEST(LinuxFileNames, ForbiddenCharactersAloneAreTakenOutOfASourcesName)
{
    speak(2);
    QTemporaryDir folder;
    ASSERT_TRUE(QDir(folder.path()).mkpath(QStringLiteral("Album")));
    for (const auto& [name, expected] : {std::pair{"What? 1:2..wav", "01. What 12..wav"},
                                         {"???.wav", "01. .wav"},
                                         {"dots ...wav", "01. dots ...wav"}}) {
        SCOPED_TRACE(name);
        const QString source = folder.filePath(QStringLiteral("Album/") + QLatin1String(name));
        decoderfiles::make(source, 100);
        QTemporaryDir target;
        RunParts run;
        run.order.sourceAudioFile = source;
        run.order.outputFormat = OutputWav;
        run.order.outputFolder = target.path();
        FileRun(run.order, run.writer, run.report).run();
        EXPECT_EQ(QDir(target.filePath(QStringLiteral("Album"))).entryList(QDir::Files),
                  QStringList{QLatin1String(expected)});
    }
}

// Of three bytes each, of which a name has 255 at most.
TEST(LinuxFileNames, ATitleOfThreeHundredKanjiGivesAFile)
{
    const QString title(300, QChar(u'漢'));
    QTemporaryDir folder;
    RunRecorder run;
    ImageDescription description;
    description.tracks = {{0, QStringLiteral("x")}};
    ASSERT_TRUE(run.drive.openCue(writeImage(folder.path(), description, makeAudio(5, 1))));
    DiscToc disc = run.drive.readToc();
    disc.tracks[0].title = title;
    QTemporaryDir target;
    run.worker.configure(&run.drive, disc, target.path(), title, title, QString(), QPixmap(), QString(), 1, 1,
                         300, OutputFlac, QString(), 20);
    run.worker.run();
    ASSERT_EQ(run.results.size(), 1);
    EXPECT_TRUE(run.results[0].ok);
    EXPECT_EQ(QDir(target.path()).entryList(QDir::Files | QDir::Hidden).size(), 1);
}
