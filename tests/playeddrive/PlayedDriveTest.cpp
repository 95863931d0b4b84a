// Whole programs, as they are, with the drive played to them.

#include "playeddrive/DriveDescription.h"
#include "support/DiscMaker.h"
#include "support/Tool.h"

#include <QCryptographicHash>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class PlayedDriveTest : public ::testing::Test {
protected:
    PlayedDriveTest()
    {
        description.seconds = 12;
        description.audioSeed = 7;
    }

    ToolResult run(const QStringList& program) const
    {
        QStringList words{QStringLiteral("--chdir=") + files.path(),
                          QStringLiteral("TARVEL_DRIVE_FOLDER=") + folder.path(),
                          QStringLiteral("LD_PRELOAD=") + QStringLiteral(TARVEL_PLAYED_DRIVE),
                          // The sanitizer may come second, as nothing is left out by that.
                          QStringLiteral("ASAN_OPTIONS=verify_asan_link_order=0:detect_leaks=0")};
        const QMap<QString, QString> values = description.toEnvironment();
        for (auto value = values.cbegin(); value != values.cend(); ++value)
            words.append(value.key() + u'=' + value.value());
        return runTool(QStringLiteral("env"), words + program);
    }

    ToolResult cdparanoia(const QStringList& options) const
    {
        return run(QStringList{QStringLiteral("cdparanoia"), QStringLiteral("-d"), QStringLiteral("/dev/sr0")}
                   + options);
    }

    /// What our own platform finds, line by line: a word, then the rest.
    QMap<QByteArray, QByteArray> probe(quint32 lba) const
    {
        const ToolResult result = run({QStringLiteral(TARVEL_PLAYED_DRIVE_PROBE), QString::number(lba)});
        EXPECT_TRUE(result.ok()) << result.errors.toStdString();
        QMap<QByteArray, QByteArray> found;
        for (const QByteArray& line : result.output.split('\n'))
            found.insert(line.left(line.indexOf(' ')), line.mid(line.indexOf(' ') + 1));
        return found;
    }

    QByteArray contentsOf(const QTemporaryDir& place, const char* name) const
    {
        QFile file(place.filePath(QLatin1String(name)));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    qint64 reported(const QByteArray& what) const
    {
        for (const QByteArray& line : contentsOf(folder, "report").split('\n')) {
            if (line.startsWith(what + ' '))
                return line.mid(what.size() + 1).toLongLong();
        }
        return -1;
    }

    QByteArray audio() const { return makeAudio(description.seconds * 75, description.audioSeed); }
    static QByteArray digest(const QByteArray& bytes)
    {
        return QCryptographicHash::hash(bytes, QCryptographicHash::Sha1).toHex();
    }

    DriveDescription description;
    QTemporaryDir folder; ///< the drive's
    QTemporaryDir files;  ///< the program's
};

} // namespace

TEST_F(PlayedDriveTest, AnotherProgramListsTheDisc)
{
    description.trackStarts = {0, 301, 650};
    const ToolResult result = cdparanoia({QStringLiteral("-Q")});
    ASSERT_TRUE(result.ok()) << result.errors.toStdString();
    // Length and begin of each in sectors: 301, 650 - 301, 900 - 650.
    const QByteArray said = result.errors.simplified();
    EXPECT_TRUE(said.contains("1. 301 [00:04.01] 0 [00:00.00]")) << said.toStdString();
    EXPECT_TRUE(said.contains("2. 349 [00:04.49] 301 [00:04.01]")) << said.toStdString();
    EXPECT_TRUE(said.contains("3. 250 [00:03.25] 650 [00:08.50]")) << said.toStdString();
}

TEST_F(PlayedDriveTest, AnotherProgramRipsWhatTheDiscHolds)
{
    const ToolResult result = cdparanoia({QStringLiteral("-q"), QStringLiteral("-B")});
    ASSERT_TRUE(result.ok()) << result.errors.toStdString();
    constexpr qsizetype head = 44; // of a plain WAVE file
    EXPECT_EQ(contentsOf(files, "track01.cdda.wav").mid(head)
                  + contentsOf(files, "track02.cdda.wav").mid(head)
                  + contentsOf(files, "track03.cdda.wav").mid(head),
              audio());
    EXPECT_EQ(QDir(files.path()).entryList(QDir::Files).size(), 3);
}

TEST_F(PlayedDriveTest, TheDiscMayHoldAGivenRecording)
{
    const QByteArray recording = makeAudio(90, 55);
    description.audioFile = writeFile(folder.path(), QStringLiteral("recording"), recording);
    description.trackStarts = {0};
    ASSERT_TRUE(
        cdparanoia({QStringLiteral("-q"), QStringLiteral("-r"), QStringLiteral("1"), QStringLiteral("out")})
            .ok());
    EXPECT_EQ(contentsOf(files, "out"), recording);
}

// A name that begins as the drive's does is somebody else's all the same.
TEST_F(PlayedDriveTest, TheRecordingMayLieInMemory)
{
    const QTemporaryDir memory(QStringLiteral("/dev/shm/TarvelTests-XXXXXX"));
    ASSERT_TRUE(memory.isValid());
    const QByteArray recording = makeAudio(90, 55);
    description.audioFile = writeFile(memory.path(), QStringLiteral("recording"), recording);
    description.trackStarts = {0};
    EXPECT_EQ(probe(80)["sector"], digest(recording.mid(80 * 2352, 2352)));
}

TEST_F(PlayedDriveTest, OurOwnPlatformFindsTheDriveByTheKernelsFiles)
{
    description.usb = true;
    const auto found = probe(450);
    EXPECT_EQ(found["drives"], "/dev/sr0");
    EXPECT_EQ(found["model"], "PLAYED - CD DRIVE");
    EXPECT_EQ(found["usb"], "1");
    EXPECT_EQ(found["tracks"], "0 300 600");
    EXPECT_EQ(found["sector"], digest(audio().mid(450 * 2352, 2352)));
    description.usb = false;
    EXPECT_EQ(probe(450)["usb"], "0");
}

TEST_F(PlayedDriveTest, AnOffsetDriveDeliversLate)
{
    description.readOffset = 6;
    EXPECT_EQ(probe(450)["sector"], digest(audio().mid(450 * 2352 - 6 * 4, 2352)));
}

// The disc takes two seconds to spin up, and nobody waits for it: the clock of the
// thread that reads shows them, and the report.
TEST_F(PlayedDriveTest, TheDrivesTimeIsOnTheReadersClock)
{
    const auto found = probe(450);
    EXPECT_GE(found["milliseconds"].toInt(), 2000);
    EXPECT_GE(reported("nanoseconds"), 2'000'000'000);
}

TEST_F(PlayedDriveTest, APaceChangesNothingButTheWait)
{
    const auto without = probe(450);
    const qint64 time = reported("nanoseconds");
    description.pace = 0.01;
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(probe(450)["sector"], without["sector"]);
    EXPECT_EQ(reported("nanoseconds"), time);
    EXPECT_GE(clock.nsecsElapsed(), time / 100);
}

TEST_F(PlayedDriveTest, TheReportCountsWhatTheDriveDid)
{
    ASSERT_TRUE(cdparanoia({QStringLiteral("-q"), QStringLiteral("-B")}).ok());
    // Every sector of the disc has been read at least once, 27 at a time at most.
    EXPECT_GE(reported("sectors"), 900);
    EXPECT_GE(reported("commands"), 900 / 27);
    EXPECT_LT(reported("commands"), reported("sectors"));
}

TEST_F(PlayedDriveTest, ADamagedDiscIsWhatItsNameSays)
{
    description.disc = QStringLiteral("unreadable spot");
    SimulatedDrive same;
    setUpDrive(same, description);
    ASSERT_EQ(same.mechanism.faults.size(), 1);
    const ToolResult result = cdparanoia({QStringLiteral("-e"), QStringLiteral("-B")});
    ASSERT_TRUE(result.ok());
    const quint32 first = same.mechanism.faults[0].first;
    const QByteArray skip = "[skip] @ " + QByteArray::number(first * 1176);
    EXPECT_TRUE(result.errors.contains(skip)) << skip.toStdString();
}

TEST_F(PlayedDriveTest, ADiscThatThereIsNotEndsTheProgram)
{
    description.disc = QStringLiteral("polished");
    const ToolResult result = cdparanoia({QStringLiteral("-Q")});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(result.errors.contains("no such disc: polished"));
}

TEST_F(PlayedDriveTest, OtherFilesAndDevicesAreTheMachines)
{
    const ToolResult result =
        run({QStringLiteral("sh"), QStringLiteral("-c"),
             QStringLiteral("echo kept > file; cat file; test -c /dev/null; "
                            "test -b /dev/sr0; cat /sys/class/block/sr0/device/model")});
    EXPECT_TRUE(result.ok()) << result.errors.toStdString();
    EXPECT_EQ(result.output, "kept\nCD DRIVE        \n");
}

TEST(DriveDescription, GoesThroughTheEnvironment)
{
    DriveDescription description;
    description.disc = QStringLiteral("mixed");
    description.seed = 42;
    description.seconds = 77;
    description.audioSeed = 5;
    description.audioFile = QStringLiteral("/a b/c");
    description.trackStarts = {0, 150, 4000};
    description.readOffset = -30;
    description.usb = true;
    description.c2 = false;
    description.pace = 0.25;
    const QMap<QString, QString> values = description.toEnvironment();
    for (auto value = values.cbegin(); value != values.cend(); ++value)
        qputenv(qPrintable(value.key()), value.value().toUtf8());
    const DriveDescription found = DriveDescription::fromEnvironment();
    for (const QString& name : values.keys())
        qunsetenv(qPrintable(name));
    EXPECT_EQ(found.toEnvironment(), values);
    EXPECT_EQ(found.trackStarts, description.trackStarts);
    EXPECT_EQ(found.pace, 0.25);
    EXPECT_EQ(DriveDescription::fromEnvironment().disc, QStringLiteral("clean"));
}
