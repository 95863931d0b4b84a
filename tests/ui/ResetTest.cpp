// What "Start over" takes back, seen by what the window does afterwards.

#include "ui/RipGate.h"

#include "disc/DrivePlatform.h"
#include "support/DiscMaker.h"
#include "support/Language.h"
#include "ui/RipRelay.h"
#include "ui/SectorMap.h"

#include <QComboBox>
#include <QImage>
#include <QProgressBar>
#include <QRadioButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

/// Another platform's drives, with a count of those that are open.
class CountedDrives : public DrivePlatform {
public:
    explicit CountedDrives(DrivePlatform& driven) : platform(driven) {}

    QStringList enumerateDrives() override { return platform.enumerateDrives(); }
    std::unique_ptr<DriveDevice> open(const QString& letter) override
    {
        auto device = platform.open(letter);
        return device ? std::make_unique<Counted>(std::move(device), openDevices) : nullptr;
    }
    qint64 nowNanoseconds() override { return platform.nowNanoseconds(); }
    void sleepMilliseconds(int duration) override { platform.sleepMilliseconds(duration); }

    int openDevices = 0;

private:
    class Counted : public DriveDevice {
    public:
        Counted(std::unique_ptr<DriveDevice> counted, int& number) : device(std::move(counted)), count(number)
        {
            ++count;
        }
        ~Counted() override { --count; }
        DriveReply checkVerify() override { return device->checkVerify(); }
        DriveReply readToc(std::span<quint8, 804> table) override { return device->readToc(table); }
        DriveReply readRaw(quint32 lba, quint32 number, std::span<quint8> data, bool guarded) override
        {
            return device->readRaw(lba, number, data, guarded);
        }
        DriveReply passThrough(std::span<const quint8> command, std::span<quint8> data) override
        {
            return device->passThrough(command, data);
        }
        std::optional<DriveDescriptor> descriptor() override { return device->descriptor(); }

    private:
        const std::unique_ptr<DriveDevice> device;
        int& count;
    };

    DrivePlatform& platform;
};

class Reset : public ::testing::TestWithParam<int> {
protected:
    void SetUp() override { QSettings().clear(); }

    static QStringList drive() { return {QStringLiteral("/dev/sr0")}; }

    void loadDisc(WindowDriver& app)
    {
        app.shelf().audio = makeAudio(432, 1);
        app.shelf().tracks = {{0}, {108}};
    }

    /// To the RIP step, with WAV files as the choice.
    void prepare(WindowDriver& app)
    {
        app.outputPath()->setText(folder.path());
        app.advanceTo(1);
        app.onPage<QRadioButton>(1, "fmtRadio", 1)->click();
        app.advanceTo(3);
    }

    /// Until all that came before a gate at sector 108 is drawn.
    static void waitForAQuarter(WindowDriver& app)
    {
        const auto* bar = app.onPage<QProgressBar>(3, "ripProgress");
        EXPECT_TRUE(QTest::qWaitFor([bar] { return bar->value() == 25; }, 10000));
    }

    static void startOver(WindowDriver& app)
    {
        while (app.step() > 0)
            WindowDriver::click(app.back());
        WindowDriver::click(app.reset());
    }

    static QImage mapPicture(WindowDriver& app)
    {
        return app.window().findChild<SectorMap*>()->grab().toImage();
    }
    static QStringList cards(WindowDriver& app)
    {
        return {app.card(0), app.card(1), app.card(2), app.card(3)};
    }

    QTemporaryDir folder;
};

INSTANTIATE_TEST_SUITE_P(Both, Reset, bothLanguages, nameOfLanguage);

} // namespace

TEST_P(Reset, TheCoverIsGoneFromTheRip)
{
    WindowDriver app(GetParam());
    QImage picture(30, 30, QImage::Format_RGB32);
    picture.fill(Qt::blue);
    ASSERT_TRUE(picture.save(folder.filePath(QStringLiteral("art.png"))));
    app.advanceTo(2);
    app.pickCover(folder.filePath(QStringLiteral("art.png")));
    startOver(app);
    auto* box = app.onPage<QLabel>(2, "artLabel");
    EXPECT_TRUE(box->pixmap(Qt::ReturnByValue).isNull());
    EXPECT_EQ(box->text(), QStringLiteral("♪"));

    // An audio file is looked up nowhere, so nothing else could take the cover away.
    const QString music = folder.filePath(QStringLiteral("Music"));
    ASSERT_TRUE(QDir().mkpath(music));
    app.outputPath()->setText(folder.path());
    app.pickAudio(writeFile(music, QStringLiteral("song.wav"), wrapInWave(makeAudio(10, 1))));
    app.advanceTo(3);
    EXPECT_FALSE(app.runRip().isEmpty());
    EXPECT_TRUE(app.logLines().contains(QStringLiteral("  Track 00: Cover art: not found")));
    EXPECT_FALSE(app.logLines().contains(QStringLiteral("  Track 00: Cover art: OK")));
}

TEST_P(Reset, TheDiscIsGone)
{
    WindowDriver app(GetParam(), drive());
    loadDisc(app);
    app.advanceTo(2);
    ASSERT_EQ(app.tracks()->rowCount(), 2);
    startOver(app);
    app.advanceTo(3);
    WindowDriver::click(app.rip());
    EXPECT_EQ(app.logLines().last(), textIn(GetParam(), "選択可能なソースを選択しなければ実行できません。",
                                            "Please select a source before ripping."));
    EXPECT_TRUE(app.rip()->isEnabled());
}

TEST_P(Reset, TheDriveIsClosed)
{
    WindowDriver app(GetParam(), drive());
    CountedDrives counted(app.shelf());
    const DrivePlatformOverride inPlace(counted);
    loadDisc(app);
    app.advanceTo(2);
    EXPECT_EQ(counted.openDevices, 1);
    startOver(app);
    EXPECT_EQ(counted.openDevices, 0);
    app.destroyWindow();
}

TEST_P(Reset, NoPlaceholderIsLeft)
{
    WindowDriver app(GetParam(), drive());
    loadDisc(app);
    app.advanceTo(2); // where nobody knows the disc
    for (QLineEdit* field : {app.album(), app.artist(), app.year()}) {
        EXPECT_FALSE(field->placeholderText().isEmpty());
        field->setText(QStringLiteral("typed"));
    }
    startOver(app);
    for (QLineEdit* field : {app.album(), app.artist(), app.year()}) {
        EXPECT_TRUE(field->placeholderText().isEmpty());
        EXPECT_TRUE(field->text().isEmpty());
    }
}

TEST_P(Reset, TheRipPageIsAsAtTheStart)
{
    WindowDriver app(GetParam(), drive());
    loadDisc(app);
    app.shelf().mechanism.faults = {SectorFault::sticky(20, 20), SectorFault::flaky(101, 140, 0.3)};
    prepare(app);
    const QImage blank = mapPicture(app);
    EXPECT_FALSE(app.runRip().isEmpty());
    EXPECT_NE(mapPicture(app), blank);
    EXPECT_EQ(app.card(2), QStringLiteral("1"));
    EXPECT_GT(app.card(1).toInt(), 3) << "of 40 sectors, each wrong three times in ten";
    startOver(app);

    app.advanceTo(3);
    EXPECT_EQ(mapPicture(app), blank);
    EXPECT_TRUE(app.logLines().isEmpty());
    EXPECT_EQ(app.onPage<QProgressBar>(3, "ripProgress")->value(), 0);
    EXPECT_EQ(app.onPage<QLabel>(3, "progressLabel")->text(),
              textIn(GetParam(), "RIP ボタンで開始", "Press RIP START to begin"));
    EXPECT_EQ(cards(app), (QStringList{"—", "0", "0", "—"}));
    EXPECT_TRUE(app.rip()->isEnabled());
    EXPECT_FALSE(app.next()->isEnabled());
}

// The button stands on the first page, and does its work from wherever it is pressed.
TEST_P(Reset, TheFrameIsAsAtTheStart)
{
    WindowDriver app(GetParam(), drive());
    loadDisc(app);
    prepare(app);
    EXPECT_FALSE(app.runRip().isEmpty());
    app.advanceTo(4);
    EXPECT_EQ(app.next()->text(), textIn(GetParam(), "完了", "Finish"));
    app.audioPath()->setText(QStringLiteral("/music/a.wav"));
    app.next()->setEnabled(false);
    app.reset()->click();

    EXPECT_EQ(app.step(), 0);
    EXPECT_FALSE(app.back()->isEnabled());
    EXPECT_TRUE(app.next()->isEnabled());
    EXPECT_EQ(app.next()->text(), QStringLiteral("Next  ▶"));
    for (int step = 0; step < 5; ++step) {
        EXPECT_EQ(app.find<QLabel>("stepLabel", step)->property("active").toBool(), step == 0);
        EXPECT_FALSE(app.find<QLabel>("stepLabel", step)->property("done").toBool());
    }
    EXPECT_TRUE(app.audioPath()->text().isEmpty());
    EXPECT_EQ(app.onPage<QComboBox>(0, "driveCombo")->currentIndex(), -1);
    WindowDriver::click(app.next());
    EXPECT_EQ(app.step(), 1);
}

TEST_P(Reset, ADrawingThatIsOutstandingIsForgotten)
{
    WindowDriver app(GetParam(), drive());
    loadDisc(app);
    prepare(app);
    RipGate gate(app.shelf(), 108);
    WindowDriver::click(app.rip());
    ASSERT_TRUE(gate.waitUntilHeld());
    waitForAQuarter(app);
    auto* relay = app.window().findChild<RipRelay*>();
    for (int sector = 0; sector < 2; ++sector) // the first is drawn at once, or before the second
        Q_EMIT relay->sectorsDone({SectorResult()});
    app.reset()->click();
    bool over = false;
    QTimer::singleShot(200, qApp, [&over] { over = true; });
    EXPECT_TRUE(QTest::qWaitFor([&over] { return over; }, 60000));
    EXPECT_EQ(cards(app), (QStringList{"—", "0", "0", "—"}));
}

// The errors lie in front of the reset, and the count begins anew behind it.
TEST_P(Reset, DuringARipTheCountersStartFromNothing)
{
    WindowDriver app(GetParam(), drive());
    loadDisc(app);
    app.shelf().mechanism.faults = {SectorFault::sticky(27, 27), SectorFault::sticky(54, 54),
                                    SectorFault::sticky(81, 81)};
    prepare(app);
    QStringList box;
    const DialogWatcher watcher([&box](QDialog* dialog) {
        box << dialog->windowTitle();
        dialog->accept();
    });
    RipGate gate(app.shelf(), 108);
    WindowDriver::click(app.rip());
    ASSERT_TRUE(gate.waitUntilHeld());
    waitForAQuarter(app);
    EXPECT_EQ(app.card(2), QStringLiteral("3"));
    startOver(app);
    EXPECT_EQ(cards(app), (QStringList{"—", "0", "0", "—"}));
    gate.release();
    ASSERT_TRUE(QTest::qWaitFor([&box] { return !box.isEmpty(); }, 60000));
    EXPECT_EQ(app.card(2), QStringLiteral("0"));
    EXPECT_TRUE(app.logLines().contains(QStringLiteral("  Errors       : 0 sectors")));
    EXPECT_TRUE(app.logLines().contains(QStringLiteral("  Read Quality : 100.00%")));
}
