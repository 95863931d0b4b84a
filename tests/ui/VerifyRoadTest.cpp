// The Verify step of whole rips, over a database on this machine.

#include "ui/VerifyStage.h"

namespace {

class VerifyRoad : public VerifyStage {};

} // namespace

TEST_F(VerifyRoad, EveryTrackMatchesByEitherVersion)
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

TEST_F(VerifyRoad, ADataTrackInFrontShiftsTheLists)
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
