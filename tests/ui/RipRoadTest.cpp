// Whole rips of images and audio files through the window.

#include "ui/HeldRip.h"
#include "ui/WindowDriver.h"

#include "support/DiscMaker.h"
#include "support/Tool.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QImage>
#include <QProgressBar>
#include <QRadioButton>
#include <QSettings>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {

const QString rule = QStringLiteral("═══════════════════════════════════════");

class RipRoad : public ::testing::Test {
protected:
    void SetUp() override { QSettings().clear(); }

    QString makeCue(int sectors = 60)
    {
        ImageDescription image;
        image.tracks = {{0, QStringLiteral("Alpha")}, {sectors / 2, QString()}};
        return writeImage(folder.path(), image, makeAudio(sectors, 1));
    }

    void prepare(WindowDriver& app, const QString& cue)
    {
        app.outputPath()->setText(folder.path());
        app.pickCue(cue);
        app.advanceTo(1);
        app.onPage<QRadioButton>(1, "fmtRadio", 1)->click(); // WAV
        app.advanceTo(2);
    }

    QStringList filesIn(const QString& name)
    {
        return QDir(folder.filePath(name)).entryList(QDir::Files, QDir::Name);
    }

    /// The size of the "data" chunk, in bytes.
    static qint64 soundBytes(const QString& path)
    {
        const ToolResult bytes = runTool(QStringLiteral("soxi"), {QStringLiteral("-s"), path});
        return bytes.output.trimmed().toLongLong() * 4;
    }

    QTemporaryDir folder;
};

} // namespace

TEST_F(RipRoad, AWholeRipOfAnImageInEnglish)
{
    WindowDriver app(2);
    const QString cue = makeCue();
    prepare(app, cue);
    app.artist()->setText(QStringLiteral("Ada - Live"));
    app.album()->setText(QStringLiteral("Blue (Deluxe) Sky (2001)"));
    app.advanceTo(3);
    const QStringList box = app.runRip();
    EXPECT_EQ(box, (QStringList{"Rip Complete",
                                "Ripping is complete.\n\nRead Quality : 100.00%\nErrors : 0 sectors\n"
                                "Suspect Sectors : 0 sectors"}));
    QStringList log = app.logLines();
    ASSERT_GT(log.size(), 2);
    const QDateTime stamp =
        QDateTime::fromString(log.takeAt(2).trimmed(), QStringLiteral("yyyy-MM-dd  hh:mm:ss"));
    EXPECT_TRUE(stamp.isValid());
    EXPECT_LT(qAbs(stamp.secsTo(QDateTime::currentDateTime())), 120);
    EXPECT_EQ(log, (QStringList{rule,
                                "  TARVEL CD RIPPER  —  RIP START",
                                rule,
                                "Album  : Blue (Deluxe) Sky (2001) / Ada - Live",
                                "Output : " + folder.path(),
                                "Source : " + cue,
                                "Format : WAV   Naming : {track}. {title}",
                                "Program: Tarvel CD Ripper v2.0.0 (build 20261006-1720)",
                                "─── Track log ──────────────────────",
                                "Folder : " + folder.path() + "/Ada - Blue Sky",
                                "  Track 00: Cover art: not found",
                                "  Track 00: Cover art: not found",
                                "  Track 01: Alpha",
                                "  Track 01: ✦ saved  (errors:0)",
                                "  Track 02: Track 2",
                                "  Track 02: ✦ saved  (errors:0)",
                                "",
                                "  Read Quality : 100.00%",
                                "  Errors       : 0 sectors",
                                "  Suspect      : 0 sectors (damage detected, recovered by re-reading)",
                                "  Result  : Perfect  ✦",
                                rule}));
    EXPECT_EQ(filesIn(QStringLiteral("Ada - Blue Sky")), (QStringList{"01. Alpha.wav", "02. Track 2.wav"}));
    EXPECT_EQ(app.card(0), QStringLiteral("100.00%"));
    EXPECT_EQ(app.card(1), QStringLiteral("0"));
    EXPECT_EQ(app.card(2), QStringLiteral("0"));
    EXPECT_EQ(app.card(3), QStringLiteral("—"));
    EXPECT_EQ(app.onPage<QProgressBar>(3, "ripProgress")->value(), 100);
    EXPECT_EQ(app.onPage<QLabel>(3, "progressLabel")->text(),
              QStringLiteral("Done  ✦  Read Quality 100.00%"));
}

TEST_F(RipRoad, AWholeRipOfAnImageInJapanese)
{
    WindowDriver app(1);
    prepare(app, makeCue());
    app.artist()->clear();
    app.album()->clear();
    app.advanceTo(3);
    const QStringList box = app.runRip();
    EXPECT_EQ(box, (QStringList{"リッピング完了",
                                "リッピングが完了しました。\n\nRead Quality : 100.00%\nErrors : 0 sectors\n"
                                "Suspect Sectors : 0 sectors"}));
    EXPECT_TRUE(app.logLines().contains(QStringLiteral("Album  :  / ")));
    EXPECT_TRUE(app.logLines().contains("Folder : " + folder.path() + "/Unknown - Unknown"));
    EXPECT_TRUE(app.logLines().contains(QStringLiteral("  Result  : Perfect  ✦")));
    EXPECT_EQ(app.onPage<QLabel>(3, "progressLabel")->text(),
              QStringLiteral("完了  ✦  Read Quality 100.00%"));
}

TEST_F(RipRoad, EditedTitlesReachTheFilesUnlessTheyLookGenerated)
{
    WindowDriver app(2);
    prepare(app, makeCue());
    app.tracks()->item(0, 1)->setText(QStringLiteral("Track  44"));
    app.tracks()->item(1, 1)->setText(QStringLiteral("Track 2b"));
    // Neither the number nor the time is anything but a text.
    for (const int row : {0, 1}) {
        app.tracks()->item(row, 0)->setText(QStringLiteral("77"));
        app.tracks()->item(row, 2)->setText(QStringLiteral("9:59"));
    }
    app.advanceTo(3);
    app.runRip();
    EXPECT_TRUE(app.logLines().contains(QStringLiteral("  Track 02: ✦ saved  (errors:0)")));
    EXPECT_EQ(filesIn(QStringLiteral("Test Artist - Test Album")),
              (QStringList{"01. Alpha.wav", "02. Track 2b.wav"}));
    for (const char* name : {"01. Alpha.wav", "02. Track 2b.wav"}) {
        const QString path =
            folder.filePath(QStringLiteral("Test Artist - Test Album/") + QLatin1String(name));
        EXPECT_EQ(soundBytes(path), 30 * 2352) << name;
    }
}

TEST_F(RipRoad, AnOpenCellEditorCommitsAtTheStart)
{
    WindowDriver app(2);
    prepare(app, makeCue());
    app.tracks()->setCurrentCell(1, 1);
    app.tracks()->editItem(app.tracks()->item(1, 1));
    auto* editor = app.tracks()->findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    editor->setText(QStringLiteral("Typed"));
    app.advanceTo(3);
    app.runRip();
    EXPECT_EQ(filesIn(QStringLiteral("Test Artist - Test Album")),
              (QStringList{"01. Alpha.wav", "02. Typed.wav"}));
}

TEST_F(RipRoad, ASetOfDiscsHasAFolderForEach)
{
    WindowDriver app(2);
    prepare(app, makeCue());
    app.onPage<QSpinBox>(2, "formEdit", 0)->setValue(2);
    app.onPage<QSpinBox>(2, "formEdit", 1)->setValue(2); // the least that is a set
    app.advanceTo(3);
    app.runRip();
    EXPECT_TRUE(app.logLines().contains("Folder : " + folder.path() + "/Test Artist - Test Album/Disc2"));
    EXPECT_EQ(filesIn(QStringLiteral("Test Artist - Test Album/Disc2")).size(), 2);
}

TEST_F(RipRoad, ACoverChosenByHandIsNoted)
{
    WindowDriver app(2);
    prepare(app, makeCue());
    QImage picture(30, 30, QImage::Format_RGB32);
    picture.fill(Qt::blue);
    ASSERT_TRUE(picture.save(folder.filePath(QStringLiteral("art.png"))));
    app.pickCover(folder.filePath(QStringLiteral("art.png")));
    app.advanceTo(3);
    app.runRip();
    EXPECT_EQ(app.logLines().count(QStringLiteral("  Track 00: Cover art: OK")), 2);
}

TEST_F(RipRoad, AnAudioFileEndsWithoutReadQualityAndNextCloses)
{
    const QString song = writeFile(folder.path(), QStringLiteral("song.wav"), wrapInWave(makeAudio(10, 1)));
    for (const int language : {2, 1}) {
        WindowDriver app(language);
        app.outputPath()->setText(folder.path());
        app.pickAudio(song);
        app.advanceTo(3);
        const QStringList box = app.runRip();
        EXPECT_EQ(box.value(1), language == 1
                                    ? QStringLiteral("リッピングが完了しました。\n\n変換が完了しました。")
                                    : QStringLiteral("Ripping is complete.\n\nConversion completed."));
        const QStringList log = app.logLines();
        EXPECT_TRUE(log.contains("Source : " + song));
        EXPECT_EQ(
            log.mid(log.size() - 4),
            language == 1
                ? (QStringList{"",
                               "  ※ 音声ファイルからの変換のため、Read Quality等の読み取り品質チェックは"
                               "行われません",
                               "  Result  : 変換完了  ✦", rule})
                : (QStringList{"",
                               "  * Converted from an audio file, so read-quality checks such as Read "
                               "Quality are not performed",
                               "  Result  : Converted  ✦", rule}));
        EXPECT_EQ(
            app.onPage<QLabel>(3, "progressLabel")->text(),
            language == 1
                ? QStringLiteral("完了  ✦  変換済み（CD読み取りを伴わないためRead Qualityは対象外です）")
                : QStringLiteral("Done  ✦  Converted (no CD was read, so Read Quality does not apply)"));
        QCoreApplication::processEvents();
        auto* label = app.onPage<QLabel>(3, "progressLabel");
        EXPECT_GE(label->height(), label->heightForWidth(label->width()));
        WindowDriver::click(app.next());
        EXPECT_FALSE(app.window().isVisible());
    }
}

TEST_F(RipRoad, TheWindowMayGoAtAnyMomentOfARip)
{
    const QString cue = makeCue(6000);
    // Before the rip's thread has had a turn; at its start; while the log says so.
    const char* moments[] = {"", "RIP START", "Track 00: ", "Track 01: Alpha", "Track 01: ✦ saved"};
    for (const char* moment : moments) {
        SCOPED_TRACE(moment);
        WindowDriver app(2);
        prepare(app, cue);
        app.advanceTo(3);
        // A rip that has ended by then waits for nobody.
        const DialogWatcher watcher([](QDialog* dialog) { dialog->accept(); });
        WindowDriver::click(app.rip());
        const QString awaited = QString::fromUtf8(moment);
        ASSERT_TRUE(
            QTest::qWaitFor([&] { return app.logLines().join(QLatin1Char('\n')).contains(awaited); }, 60000));
        EXPECT_LT(app.destroyWindow(), 5000);
    }
}

TEST_F(RipRoad, TheUserMayWanderWhileARipRuns)
{
    HeldStart held;
    WindowDriver app(2);
    prepare(app, makeCue(2000));
    app.advanceTo(3);
    WindowDriver::click(app.rip());
    ASSERT_TRUE(QTest::qWaitFor([&] { return held.gate.isHolding(); }, 60000));
    while (app.step() > 0)
        WindowDriver::click(app.back());
    app.advanceTo(2);
    EXPECT_EQ(app.step(), 2);
    QStringList box;
    const DialogWatcher watcher([&](QDialog* dialog) {
        box << dialog->windowTitle();
        dialog->accept();
    });
    held.gate.open();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !box.isEmpty(); }, 60000));
    EXPECT_EQ(filesIn(QStringLiteral("Test Artist - Test Album")).size(), 2);
}
