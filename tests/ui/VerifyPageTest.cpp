// The Verify step over a database on this machine.

#include "ui/VerifyStage.h"

#include "support/Language.h"

namespace {

class VerifyPage : public VerifyStage {};

} // namespace

TEST_F(VerifyPage, WhileTheDatabaseIsAskedThePageSaysSo)
{
    services.on(hosts::accurateRip, "/", silence());
    for (const int language : {1, 2}) {
        WindowDriver app(language, drive());
        rip(app);
        WindowDriver::click(app.next());
        EXPECT_EQ(verdict(app), textIn(language, "照合中...", "Verifying..."));
        EXPECT_EQ(detail(app), textIn(language, "AccurateRip データベースに問い合わせています",
                                      "Querying the AccurateRip database"));
        EXPECT_EQ(bar(app)->value(), 15);
        EXPECT_EQ(column(app, 1), QStringLiteral("—"));
    }
}

TEST_F(VerifyPage, EveryTrackMatchesByEitherVersion)
{
    for (const int language : {1, 2}) {
        WindowDriver app(language, drive());
        rip(app);
        serve({{12, ripCrcs.value(1).first, 1}, {3, ripCrcs.value(2).second, 1}});
        verify(app);
        EXPECT_EQ(verdict(app), language == 1 ? QStringLiteral("✦  一致  — 信頼度 3")
                                              : QStringLiteral("✦  Match  — Confidence 3"));
        EXPECT_EQ(column(app, 0),
                  language == 1 ? QStringLiteral("✦  一致 (12)") : QStringLiteral("✦  Match (12)"));
        EXPECT_EQ(app.verdicts()->item(0, 2)->foreground().color(), QColor(0x4d, 0xb8, 0xff));
        EXPECT_EQ(
            detail(app),
            language == 1
                ? QStringLiteral("AccurateRip DB と完全一致しました。\nこのリッピングデータは信頼できます。")
                : QStringLiteral("Exact match with the AccurateRip database.\nThis rip is accurate."));
        const QStringList log = app.logLines();
        EXPECT_EQ(log.last(7),
                  (QStringList{
                      QString(), QStringLiteral("─── AccurateRip (v2 CRC) ───────────"),
                      QStringLiteral("  Disc ID : ") + accurateRipDiscId(ids),
                      QStringLiteral("  Track 01  [%1]  accurately ripped (confidence 12)").arg(crcText(1)),
                      QStringLiteral("  Track 02  [%1]  accurately ripped (confidence 3)").arg(crcText(2)),
                      QStringLiteral("  2 / 2 tracks accurately ripped"), logRule}));
    }
}

TEST_F(VerifyPage, OneMismatchIsAPartialVerdict)
{
    WindowDriver app(2, drive());
    rip(app);
    serve({{12, ripCrcs.value(1).second, 1}, {3, ripCrcs.value(2).second ^ 1, 1}});
    verify(app);
    EXPECT_EQ(verdict(app), QStringLiteral("◈  Partial mismatch"));
    EXPECT_EQ(column(app, 1), QStringLiteral("◈  Mismatch"));
    EXPECT_EQ(app.verdicts()->item(1, 2)->foreground().color(), QColor(0xff, 0x8c, 0x42));
    EXPECT_TRUE(app.logLines().contains(QStringLiteral("  Track 02  [%1]  ** MISMATCH **").arg(crcText(2))));
    EXPECT_TRUE(app.logLines().contains(QStringLiteral("  1 / 2 tracks accurately ripped")));
}

TEST_F(VerifyPage, NoMatchAtAllPointsToTheOffset)
{
    for (const int language : {1, 2}) {
        WindowDriver app(language, drive());
        rip(app);
        serve({{12, 0x12345678, 1}, {3, 0, 7}});
        verify(app);
        EXPECT_EQ(verdict(app), textIn(language, "—  未登録/不一致", "—  Not found / Mismatch"));
        EXPECT_TRUE(detail(app).contains(QStringLiteral("Sample offset")));
        EXPECT_EQ(column(app, 0), textIn(language, "◈  不一致", "◈  Mismatch"));
        EXPECT_EQ(column(app, 1), textIn(language, "—  未登録", "—  Not found"));
        EXPECT_EQ(app.verdicts()->item(1, 2)->foreground().color(), QColor(0x8a, 0x8f, 0x98));
        EXPECT_TRUE(
            app.logLines().contains(QStringLiteral("  Track 02  [%1]  not in database").arg(crcText(2))));
    }
}

TEST_F(VerifyPage, ADiscThatIsNotInTheDatabase)
{
    for (const int language : {1, 2}) {
        WindowDriver app(language, drive());
        rip(app);
        verify(app);
        const QString notFound = language == 1 ? QStringLiteral("—  未登録") : QStringLiteral("—  Not found");
        EXPECT_EQ(verdict(app), notFound);
        EXPECT_EQ(column(app, 0), notFound);
        EXPECT_EQ(app.logLines().last(4),
                  (QStringList{QStringLiteral("─── AccurateRip ────────────────────"),
                               QStringLiteral("  Disc ID : ") + accurateRipDiscId(ids),
                               QStringLiteral("  Not in database"), logRule}));
    }
}

TEST_F(VerifyPage, AServerErrorCouldNotVerify)
{
    services.on(hosts::accurateRip, "/", errorPage(503));
    WindowDriver app(2, drive());
    rip(app, {{0}, {300}});
    verify(app);
    EXPECT_EQ(verdict(app), QStringLiteral("—  Could not verify"));
    EXPECT_EQ(detail(app),
              QStringLiteral("The AccurateRip server returned an error (HTTP 503). Please try again later."));
    EXPECT_EQ(column(app, 1), QStringLiteral("—  Not verified"));
    EXPECT_TRUE(app.logLines().contains(QStringLiteral("  Could not connect to the AccurateRip server")));
}

// Row 1 is compared with the second list of the file, not with the first.
TEST_F(VerifyPage, ADataTrackInFrontShiftsTheLists)
{
    WindowDriver app(2, drive());
    rip(app, {{0, true}, {200}, {400}});
    serve({{5, ripCrcs.value(3).second, 1}, {6, ripCrcs.value(2).second, 1}});
    verify(app);
    EXPECT_EQ(column(app, 0), QStringLiteral("—  Data"));
    EXPECT_EQ(column(app, 1), QStringLiteral("✦  Match (6)"));
    EXPECT_EQ(column(app, 2), QStringLiteral("—  Not found"));
    EXPECT_EQ(verdict(app), QStringLiteral("◈  Partial mismatch"));
}
