// The program is closed, or asked by the system to end, in the middle of its work.

#include "endurance/EndingScene.h"
#include "endurance/Repetitions.h"

#include "support/DiscMaker.h"
#include "support/Tool.h"

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QThread>

#include <csignal>

#include <gtest/gtest.h>

namespace {

constexpr qint64 mostMilliseconds = 5000;
constexpr int framesOfSector = 588;

struct Ending {
    qint64 milliseconds = 0; ///< from the moment on
    QByteArray said;
    QByteArray complaints;
};

class Endings : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        stage = std::make_unique<QTemporaryDir>();
        makeImage(endingstage::longSheet, endingstage::trackCount, endingstage::trackSectors);
        makeImage(endingstage::shortSheet, 2, endingstage::shortTrackSectors);
        const QString songs = stage->filePath(endingstage::sourceFolder);
        QDir().mkpath(songs);
        for (int i = 0; i < endingstage::fileCount; ++i)
            writeFile(songs, QStringLiteral("%1.wav").arg(i),
                      wrapInWave(makeAudio(endingstage::fileSectors, static_cast<quint32>(i))));
    }
    static void TearDownTestSuite() { stage.reset(); }

    static void makeImage(const QString& sheet, int tracks, int sectors)
    {
        const QString folder = QFileInfo(stage->filePath(sheet)).path();
        QDir().mkpath(folder);
        ImageDescription image;
        for (int i = 0; i < tracks; ++i)
            image.tracks.append({i * sectors, QStringLiteral("Song")});
        writeImage(folder, image, makeAudio(tracks * sectors, 1));
    }

    /// Lets the program come to the moment and end. A program that lives on fails.
    static void play(const EndingScene& scene, const QString& output, Ending& ending)
    {
        constexpr int patienceMilliseconds = 120'000;
        QProcess program;
        program.start(QStringLiteral(TARVEL_ENDING_PROBE),
                      {QString::number(scene.seed), stage->path(), output});
        const QByteArray sign = scene.way == EndingScene::signalComes ? "now\n" : "closing\n";
        while (!ending.said.contains(sign)) {
            ASSERT_TRUE(program.waitForReadyRead(patienceMilliseconds))
                << ending.said.constData() << program.readAllStandardError().constData();
            ending.said += program.readAllStandardOutput();
        }
        if (scene.way == EndingScene::signalComes) {
            QThread::msleep(static_cast<unsigned long>(scene.milliseconds));
            ASSERT_EQ(::kill(static_cast<pid_t>(program.processId()), SIGTERM), 0);
        }
        QElapsedTimer time;
        time.start();
        ASSERT_TRUE(program.waitForFinished(patienceMilliseconds));
        ending.milliseconds = time.elapsed();
        ending.said += program.readAllStandardOutput();
        ending.complaints = program.readAllStandardError();
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(program.exitCode(), 0);
    }

    static QStringList tracksIn(const QString& folder)
    {
        QStringList found;
        QDirIterator files(folder, QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString path = files.next();
            if (!path.endsWith(QStringLiteral("/cover.jpg")))
                found << path;
        }
        return found;
    }

    static int sectorsOfATrack(EndingScene::Work work)
    {
        if (work == EndingScene::conversion)
            return endingstage::fileSectors;
        return work == EndingScene::verification ? endingstage::shortTrackSectors : endingstage::trackSectors;
    }

    static void expectWhole(const QStringList& files, int sectors)
    {
        for (const QString& file : files) {
            SCOPED_TRACE(file.toStdString());
            const ToolResult test = runTool(QStringLiteral("flac"), {QStringLiteral("-tsw"), file});
            EXPECT_TRUE(test.ok()) << test.errors.constData();
            const ToolResult length =
                runTool(QStringLiteral("metaflac"), {QStringLiteral("--show-total-samples"), file});
            EXPECT_EQ(length.output.trimmed().toInt(), sectors * framesOfSector);
        }
    }

    /// Plays one scene and judges it.
    static void expectGoodEnd(const EndingScene& scene)
    {
        SCOPED_TRACE(scene.name().toStdString());
        const QTemporaryDir output;
        Ending ending;
        play(scene, output.path(), ending);
        longest = std::max(longest, ending.milliseconds);
        EXPECT_LT(ending.milliseconds, mostMilliseconds);
        EXPECT_FALSE(ending.complaints.contains("ERROR: AddressSanitizer")
                     || ending.complaints.contains("runtime error"))
            << ending.complaints.constData();
        const QStringList files = tracksIn(output.path());
        expectWhole(files, sectorsOfATrack(scene.work));
        wholeFiles += files.size();
        static const QRegularExpression saved(QStringLiteral("saved (\\d+)\n"));
        for (auto found = saved.globalMatch(QString::fromUtf8(ending.said)); found.hasNext();) {
            const QString number = found.next().captured(1);
            EXPECT_EQ(files.filter(QLatin1Char('/') + number + QStringLiteral(". ")).size(), 1)
                << number.toStdString();
            ++reported;
        }
    }

    static inline std::unique_ptr<QTemporaryDir> stage;
    static inline qint64 longest = 0;
    static inline qsizetype wholeFiles = 0;
    static inline int reported = 0;
};

} // namespace

TEST_F(Endings, LeaveWholeFilesAndTakeFiveSecondsAtMost)
{
    const Repetitions endings("ENDING", 10);
    const QByteArray verdict = endings.each([](quint32 seed) { expectGoodEnd(EndingScene(seed)); });
    std::printf("%d endings, seeds %u to %u: %s. The longest took %lld ms; %lld files are whole, %d reported "
                "as saved.\n",
                endings.count(), endings.first(), endings.last(), verdict.constData(),
                static_cast<long long>(longest), static_cast<long long>(wholeFiles), reported);
}
