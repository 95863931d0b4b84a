// A disc in a drive, from the first click to the result box.

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

const QString drivePath = QStringLiteral("/dev/sr0");

class DiscRoad : public ::testing::Test {
protected:
    void SetUp() override { QSettings().clear(); }

    void loadDisc(WindowDriver& app, int sectors)
    {
        app.shelf().audio = makeAudio(sectors, 1);
        app.shelf().tracks = {{0, false}, {static_cast<quint32>(sectors / 3), false}};
    }

    /// To the RIP step, with WAV files as the choice.
    void prepare(WindowDriver& app)
    {
        app.outputPath()->setText(folder.path());
        app.advanceTo(1);
        app.onPage<QRadioButton>(1, "fmtRadio", 1)->click();
        app.advanceTo(2);
        app.artist()->setText(QStringLiteral("Ada"));
        app.album()->setText(QStringLiteral("Blue"));
        app.advanceTo(3);
    }

    QByteArray rippedTrack(int number) const
    {
        QFile file(folder.filePath(
            QStringLiteral("Ada - Blue/%1. Track %2.wav").arg(number, 2, 10, QLatin1Char('0')).arg(number)));
        return file.open(QIODevice::ReadOnly) ? file.readAll().mid(44) : QByteArray();
    }

    QTemporaryDir folder;
};

} // namespace

TEST_F(DiscRoad, ACleanDiscGoesTheWholeWay)
{
    QSettings().setValue(QStringLiteral("driveOffsets/ACME - DISC READER 9/offset"), 6);
    QSettings().setValue(QStringLiteral("driveOffsets/ACME - DISC READER 9/source"), QStringLiteral("saved"));
    WindowDriver app(2, {drivePath});
    loadDisc(app, 900);
    prepare(app);
    EXPECT_EQ(app.tracks()->rowCount(), 2);
    EXPECT_EQ(app.cell(app.tracks(), 1, 2), QStringLiteral("0:08"));
    const QStringList box = app.runRip();
    EXPECT_EQ(box, (QStringList{
                       QStringLiteral("Rip Complete"),
                       QStringLiteral("Ripping is complete.\n\nRead Quality : 100.00%\nErrors : 0 sectors\n"
                                      "Suspect Sectors : 0 sectors")}));
    const QStringList log = app.logLines();
    EXPECT_TRUE(log.contains(QStringLiteral("Drive  : ACME - DISC READER 9")));
    EXPECT_TRUE(log.contains(QStringLiteral("Read offset : +6  (saved)")));
    EXPECT_FALSE(log.join(QLatin1Char('\n')).contains(QStringLiteral("Source : ")));
    EXPECT_TRUE(
        log.contains(QStringLiteral("Read mode   : secure - C2 error pointers (max 20 re-reads / sector)")));
    EXPECT_TRUE(log.contains(QStringLiteral("  Track 02: ✦ saved  (errors:0)")));
    EXPECT_TRUE(log.contains(QStringLiteral("  Result  : Perfect  ✦")));
    EXPECT_TRUE(app.card(3).endsWith(QLatin1Char('x'))) << "the speed of the virtual clock";

    const qsizetype shift = 6 * 4;
    const QByteArray second = app.shelf().audio.mid(300 * 2352 + shift) + QByteArray(shift, '\0');
    EXPECT_TRUE(rippedTrack(2).startsWith(second)) << "600 sectors, moved by the offset, silence at the end";
}

TEST_F(DiscRoad, ADriveWithoutPointersIsReadTwiceAndSaysSo)
{
    for (const int language : {1, 2}) {
        WindowDriver app(language, {drivePath});
        loadDisc(app, 600);
        app.shelf().c2Available = false;
        prepare(app);
        app.runRip();
        EXPECT_TRUE(app.logLines().contains(
            QStringLiteral("Read mode   : secure - double read & compare (max 20 re-reads / sector)")));
        EXPECT_TRUE(rippedTrack(1).startsWith(app.shelf().audio.left(200 * 2352)));
    }
}

TEST_F(DiscRoad, AScratchedDiscShowsWhatWasRecoveredAndWhatWasNot)
{
    for (const int language : {1, 2}) {
        WindowDriver app(language, {drivePath});
        loadDisc(app, 600);
        app.shelf().mechanism.faults = {SectorFault::flaky(100, 100, 1), SectorFault::sticky(400, 400)};
        app.shelf().mechanism.faults[0].variants = 2;
        prepare(app);
        app.runRip();
        // Sector 100 is always flagged, and so is 400: neither can be confirmed.
        EXPECT_EQ(app.card(2), QStringLiteral("2"));
        EXPECT_EQ(app.card(1), QStringLiteral("0"));
        EXPECT_EQ(app.card(0), QStringLiteral("99.67%"));
        const QStringList log = app.logLines();
        EXPECT_TRUE(log.contains(language == 1
                                     ? QStringLiteral("  ⚠ 読み直しても確定できなかったセクタ: LBA 400")
                                     : QStringLiteral("  ⚠ Could not confirm sector: LBA 400")));
        EXPECT_TRUE(log.contains(QStringLiteral("  Track 02: ✦ saved  (errors:1)")));
        EXPECT_TRUE(log.contains(QStringLiteral("  Result  : Some sectors could not be confirmed  ✕")));
    }
}

TEST_F(DiscRoad, ARecoveredSectorIsASuspect)
{
    WindowDriver app(2, {drivePath});
    loadDisc(app, 600);
    app.shelf().mechanism.faults = {SectorFault::flaky(101, 140, 0.3)};
    prepare(app);
    app.runRip();
    EXPECT_EQ(app.card(2), QStringLiteral("0"));
    EXPECT_GT(app.card(1).toInt(), 3) << "of 40 sectors, each wrong three times in ten";
    EXPECT_TRUE(app.logLines().contains(QStringLiteral("  Result  : Recovered  ◈")));
    EXPECT_TRUE(rippedTrack(1).startsWith(app.shelf().audio.left(200 * 2352)));
}

TEST_F(DiscRoad, SteppingBackDuringARipNeitherDisturbsItNorOpensTheDrive)
{
    Gate reading;
    WindowDriver app(2, {drivePath});
    loadDisc(app, 6000);
    prepare(app);
    QStringList box;
    const DialogWatcher watcher([&](QDialog* dialog) {
        box << dialog->windowTitle();
        dialog->accept();
    });
    app.shelf().onClock = [&] { reading.pass(); };
    WindowDriver::click(app.rip());
    EXPECT_TRUE(QTest::qWaitFor([&] { return reading.isHolding(); }, 60000));
    WindowDriver::click(app.back());
    EXPECT_EQ(app.step(), 2);
    WindowDriver::click(app.back());
    app.advanceTo(2);
    EXPECT_EQ(app.step(), 2);
    reading.open(); // the rip goes on now that the user has been back and forth
    EXPECT_TRUE(QTest::qWaitFor([&] { return !box.isEmpty(); }, 60000));
    EXPECT_TRUE(rippedTrack(1).startsWith(app.shelf().audio.left(2000 * 2352)));
    EXPECT_TRUE(rippedTrack(2).startsWith(app.shelf().audio.mid(2000 * 2352)));
    EXPECT_EQ(app.shelf().count(SimulatedDrive::Command::Toc), 1) << "of the first entry alone";
}

TEST_F(DiscRoad, ResetAndASheetDuringARipNeitherDisturbIt)
{
    ImageDescription image;
    image.tracks = {{0, QStringLiteral("Alpha")}};
    const QString cue = writeImage(folder.path(), image, makeAudio(30, 2));
    Gate reading;
    WindowDriver app(2, {drivePath});
    loadDisc(app, 6000);
    prepare(app);
    app.shelf().onClock = [&] { reading.pass(); };
    WindowDriver::click(app.rip());
    ASSERT_TRUE(QTest::qWaitFor([&] { return reading.isHolding(); }, 60000));
    while (app.step() > 0)
        WindowDriver::click(app.back());
    WindowDriver::click(app.reset());
    app.pickCue(cue);
    EXPECT_EQ(app.tracks()->rowCount(), 0) << "the drive is not to be had";
    QStringList box;
    const DialogWatcher watcher([&](QDialog* dialog) {
        box << dialog->windowTitle();
        dialog->accept();
    });
    reading.open();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !box.isEmpty(); }, 60000));
    EXPECT_TRUE(rippedTrack(2).startsWith(app.shelf().audio.mid(2000 * 2352)));
    app.pickCue(cue);
    EXPECT_EQ(app.tracks()->rowCount(), 1) << "the drive is free again";
}

TEST_F(DiscRoad, TheWindowMayGoAtAnyMomentOfARip)
{
    for (const int readsBefore : {0, 1, 20, 150}) {
        Gate reading(readsBefore);
        WindowDriver app(2, {drivePath});
        loadDisc(app, 9000);
        prepare(app);
        app.shelf().onClock = [&] { reading.pass(); };
        WindowDriver::click(app.rip());
        ASSERT_TRUE(QTest::qWaitFor([&] { return reading.isHolding(); }, 60000)) << readsBefore;
        reading.open();
        EXPECT_LT(app.destroyWindow(), 5000);
    }
    // Before the rip's thread has had a turn.
    WindowDriver app(2, {drivePath});
    loadDisc(app, 9000);
    prepare(app);
    WindowDriver::click(app.rip());
    EXPECT_LT(app.destroyWindow(), 5000);
}
