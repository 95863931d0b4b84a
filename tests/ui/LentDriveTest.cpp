// A drive that a rip has in its hands is nobody else's.

#include "ui/HeldRip.h"
#include "ui/WindowDriver.h"

#include "support/DiscMaker.h"

#include <QFile>
#include <QRadioButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {

const QString rule = QStringLiteral("═══════════════════════════════════════");

QStringList missingSource(int language)
{
    return language == 1 ? QStringList{rule, QStringLiteral("  エラー"), rule,
                                       QStringLiteral("選択可能なソースを選択しなければ実行できません。")}
                         : QStringList{rule, QStringLiteral("  Error"), rule,
                                       QStringLiteral("Please select a source before ripping.")};
}

class LentDrive : public ::testing::Test {
protected:
    void SetUp() override
    {
        QSettings().clear();
        QDir(folder.path()).mkpath(QStringLiteral("Music"));
    }

    /// Clicks RIP START on the disc in the drive, and waits until it reads.
    void startHeldRip(WindowDriver& app, Gate& reading)
    {
        app.shelf().audio = makeAudio(sectors, 1);
        app.shelf().tracks = {{0, false}};
        app.shelf().onClock = [&reading] { reading.pass(); };
        app.outputPath()->setText(folder.filePath(QStringLiteral("Music")));
        app.advanceTo(1);
        app.onPage<QRadioButton>(1, "fmtRadio", 1)->click(); // WAV
        app.advanceTo(3);
        WindowDriver::click(app.rip());
        ASSERT_TRUE(QTest::qWaitFor([&reading] { return reading.isHolding(); }, 60000));
    }

    static void backToSource(WindowDriver& app)
    {
        while (app.step() > 0)
            WindowDriver::click(app.back());
    }

    /// Lets the rip go on, and expects it to have read the disc as if alone.
    void expectUndisturbedRip(WindowDriver& app, Gate& reading)
    {
        bool done = false;
        const DialogWatcher watcher([&done](QDialog* dialog) {
            done = true;
            dialog->accept();
        });
        reading.open();
        ASSERT_TRUE(QTest::qWaitFor([&done] { return done; }, 60000));
        QFile file(folder.filePath(QStringLiteral("Music/Unknown - Unknown/01. Track 1.wav")));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_TRUE(file.readAll().mid(44).startsWith(app.shelf().audio));
        EXPECT_TRUE(file.remove());
    }

    static constexpr int sectors = 900;
    QTemporaryDir folder;
};

} // namespace

TEST_F(LentDrive, AnAudioFileThatIsTakenBackIsNoSourceForASecondRip)
{
    for (const int language : {1, 2}) {
        SCOPED_TRACE(language);
        Gate reading;
        WindowDriver app(language, {QStringLiteral("/dev/sr0")});
        startHeldRip(app, reading);
        backToSource(app);
        WindowDriver::click(app.reset());
        app.audioPath()->setText(QStringLiteral("/music/a.wav"));
        app.advanceTo(2);
        backToSource(app);
        app.audioPath()->clear();
        app.advanceTo(3);
        WindowDriver::click(app.rip());
        EXPECT_EQ(app.logLines(), missingSource(language));
        EXPECT_TRUE(app.rip()->isEnabled());
        expectUndisturbedRip(app, reading);
    }
}

TEST_F(LentDrive, NeitherIsADiscThatWasReadBefore)
{
    Gate reading;
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    startHeldRip(app, reading);
    const QStringList before = app.logLines();
    app.rip()->setEnabled(true); // as a reset would, with the tracks kept
    WindowDriver::click(app.rip());
    EXPECT_EQ(app.logLines(), missingSource(2));
    EXPECT_NE(before, missingSource(2));
    expectUndisturbedRip(app, reading);
}

TEST_F(LentDrive, AnAudioFileIsConvertedBesideTheRip)
{
    Gate reading;
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    startHeldRip(app, reading);
    backToSource(app);
    WindowDriver::click(app.reset());
    app.audioPath()->setText(
        writeFile(folder.path(), QStringLiteral("song.wav"), wrapInWave(makeAudio(10, 2))));
    app.advanceTo(3);
    EXPECT_FALSE(app.runRip().isEmpty());
    EXPECT_TRUE(app.logLines().contains(QStringLiteral("  Track 01: ✦ saved  (errors:0)")));
    expectUndisturbedRip(app, reading);
}

TEST_F(LentDrive, ARipWithoutASourceLeavesTheDriveFree)
{
    ImageDescription image;
    image.tracks = {{0, QStringLiteral("Alpha")}};
    WindowDriver app(2);
    app.advanceTo(3);
    WindowDriver::click(app.rip());
    EXPECT_EQ(app.logLines(), missingSource(2));
    backToSource(app);
    app.pickCue(writeImage(folder.path(), image, makeAudio(30, 1)));
    EXPECT_EQ(app.tracks()->rowCount(), 1);
}
