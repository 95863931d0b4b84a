// What the RIP page shows of a disc while it is ripped: the map, the bar, the
// texts and the cards.

#include "ui/RipGate.h"

#include "disc/DrivePlatform.h"
#include "support/DiscMaker.h"
#include "ui/SectorMap.h"

#include <QImage>
#include <QProgressBar>
#include <QRadioButton>
#include <QSettings>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

constexpr QRgb notRead = 0xff0a0a10;
constexpr QRgb readAtOnce = 0xff4db8ff;
constexpr QRgb notConfirmed = 0xff8a1a1a;

/// The drives of another platform by a clock on which a read of 27 sectors takes
/// 45 ms, and nothing else any time: it is asked before and behind each read.
class ClockOfReads : public DrivePlatform {
public:
    explicit ClockOfReads(DrivePlatform& driven) : platform(driven) {}

    QStringList enumerateDrives() override { return platform.enumerateDrives(); }
    std::unique_ptr<DriveDevice> open(const QString& letter) override { return platform.open(letter); }
    void sleepMilliseconds(int) override {}
    qint64 nowNanoseconds() override { return (asked++ + 1) / 2 * 45'000'000; }

private:
    DrivePlatform& platform;
    qint64 asked = 0;
};

class RipDisplay : public ::testing::Test {
protected:
    void SetUp() override { QSettings().clear(); }

    /// Three audio tracks of 108, 216 and 108 sectors, and 432 sectors of data.
    void loadDisc(WindowDriver& app)
    {
        app.shelf().audio = makeAudio(432, 1);
        app.shelf().tracks = {{0}, {108}, {324}, {432, true}};
        app.shelf().leadOutLba = 864;
    }

    /// To the RIP step, with WAV files as the choice and a map of 50 cells.
    void prepare(WindowDriver& app)
    {
        app.outputPath()->setText(folder.path());
        app.advanceTo(1);
        app.onPage<QRadioButton>(1, "fmtRadio", 1)->click();
        app.advanceTo(3);
        map(app)->setFixedSize(50, 25);
        QCoreApplication::processEvents();
    }

    static SectorMap* map(WindowDriver& app) { return app.window().findChild<SectorMap*>(); }

    /// The colours of the map's cells, row by row.
    static QList<QRgb> cells(WindowDriver& app)
    {
        const QImage picture = map(app)->grab().toImage().convertToFormat(QImage::Format_ARGB32);
        QList<QRgb> colours;
        for (int cell = 0; cell < 50; ++cell)
            colours << picture.pixel(cell % 10 * 5 + 2, cell / 10 * 5 + 2);
        return colours;
    }
    static QList<QRgb> firstCells(int count, QRgb colour)
    {
        return QList<QRgb>(count, colour) + QList<QRgb>(50 - count, notRead);
    }

    static QProgressBar* bar(WindowDriver& app) { return app.onPage<QProgressBar>(3, "ripProgress"); }
    static QString status(WindowDriver& app) { return app.onPage<QLabel>(3, "progressLabel")->text(); }

    /// Clicks RIP START, and lets the test look on while the gate holds the rip.
    static void ripHeld(WindowDriver& app, RipGate& gate, const std::function<void()>& look)
    {
        QStringList box;
        const DialogWatcher watcher([&box](QDialog* dialog) {
            box << dialog->windowTitle();
            dialog->accept();
        });
        WindowDriver::click(app.rip());
        ASSERT_TRUE(gate.waitUntilHeld());
        look();
        gate.release();
        ASSERT_TRUE(QTest::qWaitFor([&box] { return !box.isEmpty(); }, 60000));
    }

    QTemporaryDir folder;
};

} // namespace

// At the gate, 108 of 432 sectors are done. 50 cells of 9 sectors each hold them.
TEST_F(RipDisplay, OnlyAudioCountsInTheBarAndTheMap)
{
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    loadDisc(app);
    prepare(app);
    RipGate gate(app.shelf(), 108);
    ripHeld(app, gate, [&] {
        EXPECT_TRUE(QTest::qWaitFor([&] { return bar(app)->value() > 24; }, 10000));
        EXPECT_EQ(bar(app)->value(), 25);
        EXPECT_EQ(cells(app), firstCells(12, readAtOnce));
        EXPECT_EQ(app.card(0), QStringLiteral("100.00%"));
        EXPECT_FALSE(app.rip()->isEnabled());
        EXPECT_FALSE(app.next()->isEnabled());
    });
    EXPECT_EQ(bar(app)->value(), 100);
    EXPECT_EQ(cells(app), firstCells(48, readAtOnce));
}

TEST_F(RipDisplay, ASectorThatCannotBeConfirmedMarksItsCell)
{
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    loadDisc(app);
    app.shelf().mechanism.faults = {SectorFault::sticky(27, 27)};
    prepare(app);
    RipGate gate(app.shelf(), 108);
    ripHeld(app, gate, [&] {
        EXPECT_TRUE(QTest::qWaitFor([&] { return bar(app)->value() == 25; }, 10000));
        QList<QRgb> expected = firstCells(12, readAtOnce);
        expected[3] = notConfirmed; // sectors 27 to 35
        EXPECT_EQ(cells(app), expected);
        EXPECT_EQ(app.card(0), QStringLiteral("99.07%")) << "1 of 108";
        EXPECT_EQ(app.card(1), QStringLiteral("0"));
        EXPECT_EQ(app.card(2), QStringLiteral("1"));
    });
    EXPECT_EQ(app.card(0), QStringLiteral("99.77%")) << "1 of 432";
}

TEST_F(RipDisplay, ADiscOfDataAloneLeavesTheMapBlankAndEnds)
{
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    app.shelf().tracks = {{0, true}};
    app.shelf().leadOutLba = 432;
    prepare(app);
    EXPECT_FALSE(app.runRip().isEmpty());
    EXPECT_EQ(cells(app), firstCells(0, readAtOnce));
    EXPECT_EQ(app.card(0), QStringLiteral("100.00%"));
    EXPECT_TRUE(app.next()->isEnabled());
}

TEST_F(RipDisplay, TheTextNamesTheTrackItsPlaceAndItsTitle)
{
    for (const int language : {1, 2}) {
        WindowDriver app(language, {QStringLiteral("/dev/sr0")});
        loadDisc(app);
        prepare(app);
        app.tracks()->item(1, 1)->setText(QStringLiteral("Reed %1 & <b>Rain</b>"));
        RipGate gate(app.shelf(), 108);
        ripHeld(app, gate, [&] {
            const QString second = QStringLiteral("Track 2/3: Reed %1 & <b>Rain</b>");
            EXPECT_TRUE(QTest::qWaitFor([&] { return status(app) == second; }, 10000))
                << status(app).toStdString();
        });
    }
}

TEST_F(RipDisplay, TheTextFollowsTheTwoPassesOfADriveWithoutPointers)
{
    for (const auto& [pass, text] : {std::pair{1, "Track 1/3: Track 1  —  1st read"},
                                     {2, "Track 1/3: Track 1  —  2nd read (compare)"}}) {
        WindowDriver app(2, {QStringLiteral("/dev/sr0")});
        loadDisc(app);
        app.shelf().c2Available = false;
        prepare(app);
        RipGate gate(app.shelf(), 27, pass);
        ripHeld(app, gate, [&app, wanted = QString::fromUtf8(text)] {
            EXPECT_TRUE(QTest::qWaitFor([&] { return status(app) == wanted; }, 10000))
                << status(app).toStdString();
        });
    }
}

// 27 sectors in 45 ms are 600 sectors, or 1378.125 KiB, a second; 150 KiB are "1x".
TEST_F(RipDisplay, TheSpeedIsInMultiplesOf150KiBASecond)
{
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    ClockOfReads clock(app.shelf());
    const DrivePlatformOverride inPlace(clock);
    loadDisc(app);
    prepare(app);
    EXPECT_EQ(app.card(3), QStringLiteral("—"));
    EXPECT_FALSE(app.runRip().isEmpty());
    EXPECT_EQ(app.card(3), QStringLiteral("9.2x"));
}

TEST_F(RipDisplay, TheReReadsAllowedAreThoseOfTheSettings)
{
    for (const int retries : {7, 500}) {
        QSettings().setValue(QStringLiteral("read/maxRetries"), retries);
        WindowDriver app(2, {QStringLiteral("/dev/sr0")});
        loadDisc(app);
        prepare(app);
        EXPECT_FALSE(app.runRip().isEmpty());
        EXPECT_TRUE(app.logLines().contains(
            QStringLiteral("Read mode   : secure - C2 error pointers (max %1 re-reads / sector)")
                .arg(retries)));
    }
}
