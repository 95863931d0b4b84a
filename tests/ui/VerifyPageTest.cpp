// The Verify page by itself, over a database on this machine. Verifications of
// whole rips: VerifyRoadTest and VerifyTroubleTest.

#include "ui/VerifyPage.h"

#include "disc/DiscModel.h"
#include "support/Language.h"
#include "ui/PageStage.h"
#include "ui/ServiceStage.h"
#include "verify/AccurateRip.h"
#include "verify/AccurateRipDatabase.h"

#include <QLabel>
#include <QProgressBar>
#include <QTableWidget>

namespace {

const QString rule = QStringLiteral("═══════════════════════════════════════");
const QString noTrackLines = QStringLiteral("─── AccurateRip ────────────────────");

/// The page with nothing around it, and the lines that it has for the log.
struct Stage : PageStage {
    explicit Stage(int language = 2) : PageStage(language)
    {
        QObject::connect(&page, &VerifyPage::logLine, [this](const QString& line) { log << line; });
        page.show();
    }

    QString verdict() { return on<QLabel>(page, "verifyResult")->text(); }
    QString detail() { return on<QLabel>(page, "verifyDetail")->text(); }
    QTableWidget* table() { return on<QTableWidget>(page, "trackTable"); }
    QString cell(int row, int column) { return table()->item(row, column)->text(); }
    QColor colour(int row) { return table()->item(row, 2)->foreground().color(); }
    QProgressBar* bar() { return on<QProgressBar>(page, "ripProgress"); }
    bool waitForVerdict()
    {
        return QTest::qWaitFor([this] { return bar()->value() == 100; }, 60000);
    }

    VerifyPage page;
    QStringList log;
};

class VerifyPageTest : public ServiceStage {
protected:
    VerifyPageTest()
    {
        layOut({false, false});
        ripCrcs = {{1, {0x11, 0x12}}, {2, {0x21, 0x22}}, {3, {0x31, 0x32}}};
    }
    ~VerifyPageTest() override { ripCrcs.clear(); }

    /// Tracks of 200 sectors each, of data where it is said so.
    void layOut(const QList<bool>& ofData)
    {
        disc = DiscToc();
        for (const bool isData : ofData) {
            TrackInfo track;
            track.number = static_cast<int>(disc.tracks.size()) + 1;
            track.startLba = static_cast<quint32>(200 * disc.tracks.size());
            track.endLba = track.startLba + 199;
            track.isData = isData;
            disc.tracks.append(track);
        }
        disc.totalSectors = static_cast<quint32>(200 * disc.tracks.size());
    }

    void serve(const QList<accuraterip::Entry>& entries)
    {
        const AccurateRipIds ids = computeAccurateRipIds(disc);
        services.on(hosts::accurateRip, "/accuraterip/",
                    page(accuraterip::pressing(ids.discId1, ids.discId2, ids.cddbId, entries)));
    }

    void verify(Stage& stage)
    {
        QList<TrackRow> rows;
        for (const TrackInfo& track : disc.tracks)
            rows.append({QString::number(track.number), QStringLiteral("Title")});
        stage.page.showTracks(rows);
        stage.page.start(disc);
        ASSERT_TRUE(stage.waitForVerdict());
    }

    QString discLine() const { return QStringLiteral("  Disc ID : ") + accurateRipDiscId(disc); }

    DiscToc disc;
};

} // namespace

TEST_F(VerifyPageTest, TextsInBothLanguages)
{
    Stage english(2);
    EXPECT_EQ(on<QLabel>(english.page, "stepHeading")->text(), QStringLiteral("AccurateRip Verify"));
    EXPECT_EQ(on<QLabel>(english.page, "subLabel")->text(),
              QStringLiteral("Compares your rip with the AccurateRip database.\n"
                             "Checks that you got the same data as other users."));
    EXPECT_EQ(english.verdict(), QStringLiteral("Waiting to verify..."));
    EXPECT_EQ(english.table()->horizontalHeaderItem(2)->text(), QStringLiteral("AccurateRip"));
    EXPECT_EQ(english.table()->columnWidth(0), 52);
    EXPECT_EQ(english.table()->columnWidth(2), 120);
    EXPECT_EQ(english.table()->editTriggers(), QAbstractItemView::NoEditTriggers);
    Stage japanese(1);
    EXPECT_EQ(on<QLabel>(japanese.page, "stepHeading")->text(), QStringLiteral("AccurateRip ベリファイ"));
    EXPECT_EQ(on<QLabel>(japanese.page, "subLabel")->text(),
              QStringLiteral("リッピング結果を AccurateRip データベースと照合します。\n"
                             "他のユーザーと同一のデータが取れているか確認します。"));
    EXPECT_EQ(japanese.verdict(), QStringLiteral("照合待機中..."));
}

TEST_F(VerifyPageTest, TheTracksAreListedWithoutAVerdict)
{
    Stage stage;
    stage.page.showTracks({{QStringLiteral("01"), QStringLiteral("Alpha")}});
    stage.page.showTracks(
        {{QStringLiteral("01"), QStringLiteral("Alpha")}, {QStringLiteral("02"), QString()}});
    ASSERT_EQ(stage.table()->rowCount(), 2);
    EXPECT_EQ(stage.table()->rowHeight(0), 26);
    EXPECT_EQ(stage.cell(0, 0), QStringLiteral("01"));
    EXPECT_EQ(stage.cell(0, 1), QStringLiteral("Alpha"));
    EXPECT_EQ(stage.cell(1, 2), QStringLiteral("—"));
    EXPECT_EQ(stage.bar()->value(), 0);
}

TEST_F(VerifyPageTest, EveryTrackMatchesByEitherVersion)
{
    serve({{12, 0x11, 1}, {3, 0x22, 1}});
    for (const int language : {1, 2}) {
        Stage stage(language);
        verify(stage);
        EXPECT_EQ(stage.verdict(), textIn(language, "✦  一致  — 信頼度 3", "✦  Match  — Confidence 3"));
        EXPECT_EQ(stage.cell(0, 2), textIn(language, "✦  一致 (12)", "✦  Match (12)"));
        EXPECT_EQ(stage.colour(0), QColor(0x4d, 0xb8, 0xff));
        EXPECT_EQ(stage.detail(),
                  textIn(language,
                         "AccurateRip DB と完全一致しました。\nこのリッピングデータは信頼できます。",
                         "Exact match with the AccurateRip database.\nThis rip is accurate."));
        EXPECT_EQ(stage.log, (QStringList{QString(), "─── AccurateRip (v2 CRC) ───────────", discLine(),
                                          "  Track 01  [00000012]  accurately ripped (confidence 12)",
                                          "  Track 02  [00000022]  accurately ripped (confidence 3)",
                                          "  2 / 2 tracks accurately ripped", rule}));
    }
}

TEST_F(VerifyPageTest, OneMismatchIsAPartialVerdict)
{
    serve({{12, 0x12, 1}, {3, 0x23, 1}});
    Stage stage;
    verify(stage);
    EXPECT_EQ(stage.verdict(), QStringLiteral("◈  Partial mismatch"));
    EXPECT_EQ(stage.cell(1, 2), QStringLiteral("◈  Mismatch"));
    EXPECT_EQ(stage.colour(1), QColor(0xff, 0x8c, 0x42));
    EXPECT_TRUE(stage.log.contains(QStringLiteral("  Track 02  [00000022]  ** MISMATCH **")));
    EXPECT_TRUE(stage.log.contains(QStringLiteral("  1 / 2 tracks accurately ripped")));
}

TEST_F(VerifyPageTest, NoMatchAtAllPointsToTheOffset)
{
    serve({{12, 0x12345678, 1}, {3, 0, 7}});
    for (const int language : {1, 2}) {
        Stage stage(language);
        verify(stage);
        EXPECT_EQ(stage.verdict(), textIn(language, "—  未登録/不一致", "—  Not found / Mismatch"));
        EXPECT_TRUE(stage.detail().contains(QStringLiteral("Sample offset")));
        EXPECT_EQ(stage.cell(0, 2), textIn(language, "◈  不一致", "◈  Mismatch"));
        EXPECT_EQ(stage.cell(1, 2), textIn(language, "—  未登録", "—  Not found"));
        EXPECT_EQ(stage.colour(1), QColor(0x8a, 0x8f, 0x98));
        EXPECT_TRUE(stage.log.contains(QStringLiteral("  Track 02  [00000022]  not in database")));
    }
}

TEST_F(VerifyPageTest, ADiscThatIsNotInTheDatabase)
{
    for (const int language : {1, 2}) {
        Stage stage(language);
        verify(stage);
        const QString notFound = textIn(language, "—  未登録", "—  Not found");
        EXPECT_EQ(stage.verdict(), notFound);
        EXPECT_EQ(stage.cell(0, 2), notFound);
        EXPECT_EQ(stage.log, (QStringList{QString(), noTrackLines, discLine(), "  Not in database", rule}));
    }
}

TEST_F(VerifyPageTest, AServerErrorCouldNotVerify)
{
    services.on(hosts::accurateRip, "/", errorPage(503));
    Stage stage;
    verify(stage);
    EXPECT_EQ(stage.verdict(), QStringLiteral("—  Could not verify"));
    EXPECT_EQ(stage.detail(),
              QStringLiteral("The AccurateRip server returned an error (HTTP 503). Please try again later."));
    EXPECT_EQ(stage.cell(1, 2), QStringLiteral("—  Not verified"));
    EXPECT_TRUE(stage.log.contains(QStringLiteral("  Could not connect to the AccurateRip server")));
}

// Row 1 is compared with the second list of the file, not with the first.
TEST_F(VerifyPageTest, ADataTrackInFrontShiftsTheLists)
{
    layOut({true, false, false});
    serve({{5, 0x32, 1}, {6, 0x22, 1}});
    Stage stage;
    verify(stage);
    EXPECT_EQ(stage.cell(0, 2), QStringLiteral("—  Data"));
    EXPECT_EQ(stage.cell(1, 2), QStringLiteral("✦  Match (6)"));
    EXPECT_EQ(stage.cell(2, 2), QStringLiteral("—  Not found"));
    EXPECT_EQ(stage.verdict(), QStringLiteral("◈  Partial mismatch"));
}

// What came in between belongs to another rip.
TEST_F(VerifyPageTest, TheChecksumsAreThoseOfItsStart)
{
    serve({{12, 0x12, 1}, {3, 0x22, 1}});
    Stage stage;
    stage.page.showTracks({{QStringLiteral("01"), {}}, {QStringLiteral("02"), {}}});
    stage.page.start(disc);
    ripCrcs.clear();
    ASSERT_TRUE(stage.waitForVerdict());
    EXPECT_EQ(stage.verdict(), QStringLiteral("✦  Match  — Confidence 3"));
}

TEST_F(VerifyPageTest, AgainItStartsAsTheFirstTime)
{
    serve({{12, 0x12, 1}, {3, 0x22, 1}});
    for (const int language : {1, 2}) {
        Stage stage(language);
        verify(stage);
        stage.page.start(disc);
        EXPECT_EQ(stage.verdict(), textIn(language, "照合中...", "Verifying..."));
        EXPECT_EQ(stage.detail(), textIn(language, "AccurateRip データベースに問い合わせています",
                                         "Querying the AccurateRip database"));
        EXPECT_EQ(stage.bar()->value(), 15);
        EXPECT_EQ(stage.cell(1, 2), QStringLiteral("—"));
        ASSERT_TRUE(stage.waitForVerdict());
    }
}
