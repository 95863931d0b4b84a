// The RIP page by itself. Whole rips through the window: RipRoadTest.

#include "ui/RipPage.h"

#include "disc/DiscModel.h"
#include "rip/RipTypes.h"
#include "support/DialogWatcher.h"
#include "support/DiscMaker.h"
#include "support/LoadingDrive.h"
#include "ui/LogViewer.h"
#include "ui/PageStage.h"
#include "ui/PageValues.h"
#include "ui/RipLog.h"
#include "ui/RunningRips.h"
#include "verify/AccurateRipDatabase.h"

#include <QDialog>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTextEdit>
#include <QThread>

#include <gtest/gtest.h>

namespace {

const QString rule = QStringLiteral("═══════════════════════════════════════");

/// The page with nothing around it.
struct Stage : PageStage {
    explicit Stage(int language = 2) : PageStage(language, oneDrive) { page.show(); }

    QString card(int place) { return on<QLabel>(page, "statValue", place)->text(); }
    QStringList cards() { return {card(0), card(1), card(2), card(3)}; }
    QPushButton* ripButton() { return on<QPushButton>(page, "ripBtn"); }
    QProgressBar* bar() { return on<QProgressBar>(page, "ripProgress"); }
    QString status() { return on<QLabel>(page, "progressLabel")->text(); }
    QStringList log()
    {
        const QString text = page.findChild<QTextEdit*>()->toPlainText();
        return text.isEmpty() ? QStringList() : text.split(QLatin1Char('\n'));
    }
    /// The lines of a rip's header, without its time.
    QStringList header(const RipRequest& request)
    {
        page.start(request);
        QStringList lines = log();
        lines.removeAt(2);
        return lines;
    }
    /// @return title and text of the box
    QStringList showResult(bool ofAudioFile)
    {
        QStringList box;
        const DialogWatcher watcher([&box](QDialog* dialog) {
            if (auto* message = qobject_cast<QMessageBox*>(dialog))
                box = QStringList{message->windowTitle(), message->text()};
            dialog->accept();
        });
        page.showResult(ofAudioFile);
        return box;
    }
    bool waitForRips()
    {
        return QTest::qWaitFor([this] { return rips.findChildren<QThread*>().isEmpty(); }, 60000);
    }
    bool openSheet(const QString& folder)
    {
        ImageDescription image;
        image.tracks = {{0, QStringLiteral("Alpha")}, {30, QString()}};
        return disc.openSheet(writeImage(folder, image, makeAudio(60, 1)));
    }

    RunningRips rips;
    RipPage page{disc, settings, rips};
};

class RipPageTest : public ::testing::Test {
protected:
    void SetUp() override { QSettings().clear(); }

    RipRequest requestFor(const ChosenSource& source) const
    {
        RipRequest request{source, folder.path(), QStringLiteral("wav"), {}};
        request.album.title = QStringLiteral("Blue (Deluxe)");
        request.album.artist = QStringLiteral("Ada - Live");
        return request;
    }
    ChosenSource aSheet() const
    {
        return {QStringLiteral("/dev/sr0"), folder.filePath(QStringLiteral("disc.cue")), {}};
    }

    static SectorResult sector(bool clean, bool bad, bool mismatch, quint32 speed)
    {
        SectorResult made;
        made.lba = 7;
        made.clean = clean;
        made.bad = bad;
        made.mismatch = mismatch;
        made.speed = speed;
        return made;
    }

    QTemporaryDir folder;
};

} // namespace

TEST_F(RipPageTest, TextsAndInitialValues)
{
    Stage stage(2);
    const QStringList sections{"SECTOR MAP", "LOG", "STATISTICS", "PROGRESS"};
    for (int i = 0; i < sections.size(); ++i)
        EXPECT_EQ(on<QLabel>(stage.page, "sectionLabel", i)->text(), sections[i]);
    const QStringList cards{"Read Quality", "Suspect Sectors", "Errors", "Speed"};
    const QStringList values{"—", "0", "—", "—"};
    for (int i = 0; i < cards.size(); ++i) {
        EXPECT_EQ(on<QLabel>(stage.page, "statLabel", i)->text(), cards[i]);
        EXPECT_EQ(stage.card(i), values[i]);
    }
    EXPECT_EQ(stage.ripButton()->text(), QStringLiteral("▶  RIP START"));
    EXPECT_EQ(stage.ripButton()->height(), 40);
    EXPECT_EQ(on<QProgressBar>(stage.page, "ripProgress")->height(), 4);
    EXPECT_EQ(on<QWidget>(stage.page, "rightPane")->width(), 280);
    EXPECT_EQ(on<QLabel>(stage.page, "progressLabel")->text(), QStringLiteral("Press RIP START to begin"));
    EXPECT_EQ(Stage(1).status(), QStringLiteral("RIP ボタンで開始"));
}

TEST_F(RipPageTest, WithoutADiscThereIsNoSource)
{
    for (const int language : {1, 2}) {
        Stage stage(language);
        stage.ripButton()->setEnabled(false);
        stage.page.appendLog(QStringLiteral("old"));
        EXPECT_FALSE(stage.page.claimSource({QStringLiteral("/dev/sr0"), {}, {}}));
        EXPECT_EQ(stage.log(),
                  (QStringList{rule, textIn(language, "  エラー", "  Error"), rule,
                               textIn(language, "選択可能なソースを選択しなければ実行できません。",
                                      "Please select a source before ripping.")}));
        EXPECT_TRUE(stage.ripButton()->isEnabled());
        EXPECT_FALSE(stage.disc.drive.isBorrowed());
    }
}

TEST_F(RipPageTest, ADiscIsClaimedByBorrowingItsDriveAndAnAudioFileNeedsNone)
{
    Stage stage;
    ASSERT_TRUE(stage.openSheet(folder.path()));
    ASSERT_TRUE(stage.page.claimSource(aSheet()));
    EXPECT_TRUE(stage.disc.drive.isBorrowed());
    EXPECT_TRUE(stage.log().isEmpty());
    EXPECT_FALSE(stage.page.claimSource(aSheet())) << "a rip has it";
    EXPECT_TRUE(stage.page.claimSource({{}, {}, QStringLiteral("/music/a.wav")}));
    stage.disc.drive.giveBack();
}

TEST_F(RipPageTest, ADiscInADriveThatIsShutByNowIsNoSource)
{
    Stage stage;
    stage.shelf.audio = makeAudio(60, 1);
    ASSERT_TRUE(stage.disc.openDrive(stage.shelf.letter));
    ASSERT_TRUE(stage.disc.readDisc());
    ASSERT_FALSE(stage.disc.openDrive(QStringLiteral("/dev/sr7")));
    EXPECT_FALSE(stage.page.claimSource({QStringLiteral("/dev/sr7"), {}, {}})) << "it would be silence";
    EXPECT_EQ(stage.log(), riplog::missingSource());
    EXPECT_FALSE(stage.disc.drive.isBorrowed());
}

TEST_F(RipPageTest, NorIsOneThatHasLeftItsDrive)
{
    Stage stage;
    stage.shelf.audio = makeAudio(60, 1);
    LoadingDrive loading(stage.shelf);
    const DrivePlatformOverride inPlace(loading);
    ASSERT_TRUE(stage.disc.openDrive(stage.shelf.letter));
    ASSERT_TRUE(stage.disc.readDisc());
    loading.failure = DriveFailure::notReady;
    loading.load(60);
    ASSERT_TRUE(stage.disc.openDrive(stage.shelf.letter));
    ASSERT_FALSE(stage.disc.readDisc());
    EXPECT_FALSE(stage.page.claimSource({stage.shelf.letter, {}, {}})) << "it would be silence";
    EXPECT_EQ(stage.log(), riplog::missingSource());
    EXPECT_FALSE(stage.disc.drive.isBorrowed());

    loading.load(0);
    ASSERT_TRUE(stage.disc.openDrive(stage.shelf.letter));
    ASSERT_TRUE(stage.disc.readDisc());
    EXPECT_TRUE(stage.page.claimSource({stage.shelf.letter, {}, {}}));
    stage.disc.drive.giveBack();
}

TEST_F(RipPageTest, NeitherIsTheSheetBeforeOneThatCouldNotBeOpened)
{
    const QString noImage = writeFile(folder.path(), QStringLiteral("lost.cue"),
                                      "FILE \"lost.bin\" BINARY\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n");
    const QString noSheet = writeFile(folder.path(), QStringLiteral("broken.cue"), "nothing here");
    for (const QString& sheet : {noImage, noSheet}) {
        Stage stage;
        ASSERT_TRUE(stage.openSheet(folder.path()));
        ASSERT_FALSE(stage.disc.openSheet(sheet));
        EXPECT_FALSE(stage.page.claimSource({{}, sheet, {}}));
        EXPECT_EQ(stage.log(), riplog::missingSource());
        EXPECT_FALSE(stage.disc.drive.isBorrowed());
    }
}

TEST_F(RipPageTest, ASheetOfOneTrackInAWaveFileIsADisc)
{
    Stage stage;
    writeFile(folder.path(), QStringLiteral("whole.wav"), wrapInWave(makeAudio(60, 1)));
    const QString sheet = writeFile(folder.path(), QStringLiteral("whole.cue"),
                                    "FILE \"whole.wav\" WAVE\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n");
    ASSERT_TRUE(stage.disc.openSheet(sheet));
    ASSERT_EQ(stage.disc.toc.tracks.size(), 1);
    EXPECT_FALSE(stage.disc.isAudioFile());
    ASSERT_TRUE(stage.page.claimSource({{}, sheet, {}}));
    stage.disc.drive.giveBack();
    stage.disc.takeAudioFile(QStringLiteral("/music/a.wav"));
    EXPECT_FALSE(stage.page.claimSource({{}, {}, {}})) << "a file's track, and the file no longer chosen";
}

TEST_F(RipPageTest, ARipOfASheetIsToldAllThatWasChosen)
{
    Stage stage;
    ASSERT_TRUE(stage.openSheet(folder.path()));
    stage.settings.namingRule = QStringLiteral("{track} {title} {artist} {year}");
    stage.settings.sampleOffset = 6;
    RipRequest request = requestFor(aSheet());
    request.album.year = QStringLiteral("1971");
    request.album.discNumber = 2;
    request.album.discTotal = 3;
    request.album.cover = QPixmap(10, 10);
    request.album.cover.fill(Qt::red);
    ASSERT_TRUE(stage.page.claimSource(request.source));
    EXPECT_EQ(
        stage.header(request),
        (QStringList{rule, "  TARVEL CD RIPPER  —  RIP START", rule, "Album  : Blue (Deluxe) / Ada - Live",
                     "Output : " + folder.path(), "Source : " + request.source.cuePath,
                     "Format : WAV   Naming : {track} {title} {artist} {year}",
                     "Program: Tarvel CD Ripper v2.0.0 (build 20261006-1720)",
                     "─── Track log ──────────────────────",
                     "Folder : " + folder.path() + "/Ada - Blue/Disc2", "  Track 00: Cover art: OK"}));
    EXPECT_FALSE(stage.ripButton()->isEnabled());
    EXPECT_EQ(stage.disc.drive.readOffset(), 6);
    ASSERT_TRUE(stage.waitForRips());
    EXPECT_TRUE(QFileInfo::exists(folder.filePath(QStringLiteral("Ada - Blue/Disc2/01 Alpha Ada 1971.wav"))));
    EXPECT_TRUE(QFileInfo::exists(folder.filePath(QStringLiteral("Ada - Blue/Disc2/cover.jpg"))));
    EXPECT_TRUE(QTest::qWaitFor([&stage] { return stage.bar()->value() == 100; }, 60000)) << "60 of 60";
    EXPECT_EQ(stage.status(), QStringLiteral("Track 2/2: Track 2"));
    EXPECT_TRUE(stage.log().contains(QStringLiteral("  Track 02: ✦ saved  (errors:0)")));
    EXPECT_EQ(stage.cards(), (QStringList{"100.00%", "0", "0", "—"}));
    EXPECT_FALSE(stage.disc.drive.isBorrowed());
}

TEST_F(RipPageTest, TheDiscsOfASetHaveFoldersAndASingleOneHasNone)
{
    for (const auto& [number, total, expected] :
         {std::tuple(1, 2, "/Ada - Blue/Disc1"), std::tuple(1, 1, "/Ada - Blue"),
          std::tuple(2, 1, "/Ada - Blue")}) {
        Stage stage;
        ASSERT_TRUE(stage.openSheet(folder.path()));
        RipRequest request = requestFor(aSheet());
        request.album.discNumber = number;
        request.album.discTotal = total;
        ASSERT_TRUE(stage.page.claimSource(request.source));
        EXPECT_TRUE(stage.header(request).contains("Folder : " + folder.path() + QLatin1String(expected)))
            << number << " of " << total;
        ASSERT_TRUE(stage.waitForRips());
    }
}

TEST_F(RipPageTest, ARipOfADriveNamesItWithItsOffset)
{
    Stage stage;
    stage.shelf.audio = makeAudio(60, 1);
    ASSERT_TRUE(stage.disc.openDrive(stage.shelf.letter));
    ASSERT_TRUE(stage.disc.readDisc());
    stage.settings.sampleOffset = -30;
    stage.settings.maxRetries = 7;
    const RipRequest request = requestFor({stage.shelf.letter, {}, {}});
    ASSERT_TRUE(stage.page.claimSource(request.source));
    const QStringList header = stage.header(request);
    EXPECT_EQ(header.mid(5, 2),
              (QStringList{"Drive  : ACME - DISC READER 9", "Read offset : -30  (Settings value)"}));
    EXPECT_EQ(header.last(), QStringLiteral("  Track 00: Cover art: not found"));
    EXPECT_EQ(stage.disc.drive.readOffset(), -30);
    ASSERT_TRUE(stage.waitForRips());
    EXPECT_TRUE(stage.log().contains(
        QStringLiteral("Read mode   : secure - C2 error pointers (max 7 re-reads / sector)")));
}

TEST_F(RipPageTest, AnAudioFileLeavesTheDriveAlone)
{
    Stage stage;
    ASSERT_TRUE(stage.openSheet(folder.path()));
    stage.settings.sampleOffset = 6;
    const QString song = writeFile(folder.path(), QStringLiteral("song.wav"), wrapInWave(makeAudio(10, 1)));
    stage.disc.takeAudioFile(song);
    const RipRequest request = requestFor({{}, {}, song});
    ASSERT_TRUE(stage.page.claimSource(request.source));
    EXPECT_EQ(stage.header(request).value(5), "Source : " + song);
    EXPECT_FALSE(stage.disc.drive.isBorrowed());
    EXPECT_EQ(stage.disc.drive.readOffset(), 0);
    ASSERT_TRUE(stage.waitForRips());
    // Below a folder named after that of the source.
    EXPECT_TRUE(QFileInfo::exists(folder.filePath(
        QStringLiteral("Ada - Blue/") + QDir(folder.path()).dirName() + QStringLiteral("/01. song.wav"))));
}

TEST_F(RipPageTest, WhatTheRipsReportIsShown)
{
    Stage stage;
    Q_EMIT stage.rips.statusText(QStringLiteral("state"));
    EXPECT_EQ(stage.status(), QStringLiteral("state"));
    Q_EMIT stage.rips.logLine(QStringLiteral("line"));
    Q_EMIT stage.rips.trackStarted(3, 12, QStringLiteral("Rain"));
    EXPECT_EQ(stage.status(), QStringLiteral("Track 3/12: Rain"));
    EXPECT_EQ(stage.log(), (QStringList{"line", "  Track 03: Rain"}));

    Q_EMIT stage.rips.sectorsDone({sector(true, false, false, 300), sector(false, false, false, 300)});
    Q_EMIT stage.rips.sectorsDone({sector(false, true, false, 300), sector(true, false, true, 600)});
    ASSERT_TRUE(QTest::qWaitFor([&stage] { return stage.card(3) == QStringLiteral("4.0x"); }, 60000));
    EXPECT_EQ(stage.cards(), (QStringList{"25.00%", "1", "2", "4.0x"}));
    EXPECT_EQ(stage.log().last(2), (QStringList{"  ⚠ Could not confirm sector: LBA 7",
                                                "  ⚠ Cross-check mismatch: LBA 7 (suspect sector)"}));
    EXPECT_EQ(stage.bar()->value(), 0) << "of no sectors expected";
}

TEST_F(RipPageTest, ChecksumsOfSavedTracksAreKeptForTheVerification)
{
    ripCrcs.clear();
    ripFrameWindows.clear();
    Stage stage;
    RipResult result;
    result.trackNumber = 4;
    result.ok = true;
    result.crcV1 = 11;
    result.crcV2 = 22;
    Q_EMIT stage.rips.trackDone(result);
    EXPECT_EQ(ripCrcs.value(4), std::pair(quint32{11}, quint32{22}));
    EXPECT_TRUE(ripFrameWindows.isEmpty());
    result.trackNumber = 5;
    result.frameWindow = {1, 2, 3};
    Q_EMIT stage.rips.trackDone(result);
    EXPECT_EQ(ripFrameWindows.value(5), (QList<quint32>{1, 2, 3}));
    result.trackNumber = 6;
    result.ok = false;
    Q_EMIT stage.rips.trackDone(result);
    EXPECT_FALSE(ripCrcs.contains(6));
    EXPECT_EQ(stage.log().last(), QStringLiteral("  Track 06: ◈ FAILED"));

    ASSERT_TRUE(stage.openSheet(folder.path()));
    ASSERT_TRUE(stage.page.claimSource(aSheet()));
    stage.page.start(requestFor(aSheet()));
    EXPECT_TRUE(ripCrcs.isEmpty()) << "emptied at the start of the next rip";
    EXPECT_TRUE(ripFrameWindows.isEmpty());
    ASSERT_TRUE(stage.waitForRips());
}

TEST_F(RipPageTest, TheResultOfADiscHasItsNumbers)
{
    for (const int language : {1, 2}) {
        Stage stage(language);
        Q_EMIT stage.rips.sectorsDone({sector(true, false, false, 0)});
        Q_EMIT stage.rips.sectorsDone({sector(false, false, false, 0)});
        EXPECT_EQ(stage.showResult(false),
                  (QStringList{textIn(language, "リッピング完了", "Rip Complete"),
                               textIn(language, "リッピングが完了しました。\n\n", "Ripping is complete.\n\n")
                                   + QStringLiteral("Read Quality : 50.00%\nErrors : 0 sectors\n"
                                                    "Suspect Sectors : 1 sectors")}));
        EXPECT_EQ(stage.status(),
                  textIn(language, "完了  ✦  Read Quality 50.00%", "Done  ✦  Read Quality 50.00%"));
        EXPECT_EQ(stage.card(0), QStringLiteral("50.00%"));
        EXPECT_EQ(stage.card(1), QStringLiteral("1")) << "an outstanding drawing is done";
        EXPECT_EQ(stage.bar()->value(), 100);
        EXPECT_EQ(stage.log().last(2), (QStringList{"  Result  : Recovered  ◈", rule}));
        EXPECT_FALSE(stage.ripButton()->isEnabled());
    }
}

TEST_F(RipPageTest, TheResultOfAnAudioFileHasNone)
{
    Stage stage;
    EXPECT_EQ(stage.showResult(true),
              (QStringList{"Rip Complete", "Ripping is complete.\n\nConversion completed."}));
    EXPECT_EQ(stage.status(),
              QStringLiteral("Done  ✦  Converted (no CD was read, so Read Quality does not apply)"));
    EXPECT_EQ(stage.log().last(2), (QStringList{"  Result  : Converted  ✦", rule}));
    EXPECT_EQ(stage.card(0), QStringLiteral("—"));
}

TEST_F(RipPageTest, AfterAResetNothingOfARipIsSeen)
{
    Stage stage;
    for (int number = 0; number < 3; ++number) // drawn at once, and outstanding
        Q_EMIT stage.rips.sectorsDone({sector(false, true, false, 300)});
    stage.showResult(false);
    Q_EMIT stage.rips.sectorsDone({sector(false, true, false, 300)});
    stage.page.reset();
    EXPECT_TRUE(stage.log().isEmpty());
    EXPECT_EQ(stage.bar()->value(), 0);
    EXPECT_EQ(stage.status(), QStringLiteral("Press RIP START to begin"));
    EXPECT_TRUE(stage.ripButton()->isEnabled());
    EXPECT_EQ(stage.cards(), (QStringList{"—", "0", "0", "—"}));
    EXPECT_EQ(stage.showResult(false).value(1).section(QLatin1Char('\n'), 2, 2),
              QStringLiteral("Read Quality : 100.00%"))
        << "the counters are at nothing";
}

TEST_F(RipPageTest, ASectorThatTellsNoSpeedTakesTheLastOneAway)
{
    Stage stage;
    Q_EMIT stage.rips.sectorsDone({sector(true, false, false, 300)});
    ASSERT_EQ(stage.card(3), QStringLiteral("2.0x")); // 300 / 150
    Q_EMIT stage.rips.sectorsDone({sector(true, false, false, 0)});
    EXPECT_TRUE(QTest::qWaitFor([&stage] { return stage.card(3) == QStringLiteral("—"); }, 60000));
}

TEST_F(RipPageTest, TheButtonAsksForARipAndTheFocusKnowsWhatIsNext)
{
    Stage stage;
    const QSignalSpy asked(&stage.page, &RipPage::ripClicked);
    stage.ripButton()->click();
    EXPECT_EQ(asked.size(), 1);
    EXPECT_TRUE(stage.log().isEmpty());
    stage.page.focusNextAct();
    EXPECT_EQ(stage.page.focusWidget(), stage.ripButton());
    stage.ripButton()->setEnabled(false);
    stage.page.focusNextAct();
    EXPECT_TRUE(stage.page.findChild<LogViewer*>()->isAncestorOf(stage.page.focusWidget()));
}
