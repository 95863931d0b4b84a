// Verifications that meet trouble: in the database, on the way to it, or in the
// rip.

#include "ui/Background.h"
#include "ui/VerifyStage.h"

#include "support/FileSizeLimit.h"

#include <QElapsedTimer>

namespace {

class VerifyTrouble : public VerifyStage {
protected:
    /// What the page and the log say when there was nothing to compare with.
    struct NoVerdict {
        QString label;
        QString detail;
        QString row;
        QString log;
    };

    void expectNoVerdict(WindowDriver& app, const NoVerdict& wanted)
    {
        EXPECT_EQ(verdict(app), wanted.label);
        EXPECT_EQ(detail(app), wanted.detail);
        for (int row = 0; row < app.verdicts()->rowCount(); ++row) {
            EXPECT_EQ(column(app, row), wanted.row);
            EXPECT_EQ(app.verdicts()->item(row, 2)->foreground(), QBrush()) << "no colour of its own";
        }
        EXPECT_EQ(
            app.logLines().last(5),
            (QStringList{QString(), QStringLiteral("─── AccurateRip ────────────────────"),
                         QStringLiteral("  Disc ID : ") + accurateRipDiscId(ids), wanted.log, logRule}));
    }

    static NoVerdict unreachable(int language, const QString& japanese, const QString& english)
    {
        const QString log = QStringLiteral("  Could not connect to the AccurateRip server");
        return language == 1 ? NoVerdict{QStringLiteral("—  照合できませんでした"), japanese,
                                         QStringLiteral("—  未照合"), log}
                             : NoVerdict{QStringLiteral("—  Could not verify"), english,
                                         QStringLiteral("—  Not verified"), log};
    }
};

} // namespace

TEST_F(VerifyTrouble, WithoutAConnectionNothingIsVerified)
{
    ServedAnswer hangsUp;
    hangsUp.dropped = true;
    services.on(hosts::accurateRip, "/", hangsUp);
    for (const int language : {1, 2}) {
        WindowDriver app(language, drive());
        rip(app, {{0}, {200}, {400, true}});
        verify(app);
        ASSERT_EQ(app.verdicts()->rowCount(), 3);
        expectNoVerdict(
            app,
            unreachable(
                language,
                QStringLiteral(
                    "AccurateRipのサーバーに接続できませんでした。インターネット接続を確認してください。"),
                QStringLiteral(
                    "Could not connect to the AccurateRip server. Please check your internet connection.")));
    }
}

TEST_F(VerifyTrouble, AnErrorOfTheServerAndAnEmptyFileNameTheirStatus)
{
    for (const int language : {1, 2}) {
        for (const int status : {503, 500, 200}) {
            services.on(hosts::accurateRip, "/", status == 200 ? page(QByteArray()) : errorPage(status));
            WindowDriver app(language, drive());
            rip(app);
            verify(app);
            expectNoVerdict(
                app,
                unreachable(language,
                            QStringLiteral("AccurateRipのサーバーからエラーが返りました（HTTP "
                                           "%1）。時間をおいて再度お試しください。")
                                .arg(status),
                            QStringLiteral(
                                "The AccurateRip server returned an error (HTTP %1). Please try again later.")
                                .arg(status)));
        }
    }
}

TEST_F(VerifyTrouble, WhatHoldsNoEntryOfThisDiscIsNotFound)
{
    const AccurateRipIds own = computeAccurateRipIds(discOfTracks({{0}, {300}}));
    const QByteArray strange =
        accuraterip::pressing(own.discId1 ^ 1, own.discId2, own.cddbId, {{9, 1, 1}, {9, 2, 2}});
    const QByteArray empty =
        accuraterip::pressing(own.discId1, own.discId2, own.cddbId, {{9, 0, 1}, {9, 0, 2}});
    for (const int language : {1, 2}) {
        const QString found = language == 1 ? QStringLiteral("—  未登録") : QStringLiteral("—  Not found");
        const QString text =
            language == 1 ? QStringLiteral("このCD（プレス）はAccurateRipデータベースに登録されていません。")
                          : QStringLiteral("This disc (pressing) is not in the AccurateRip database.");
        for (const ServedAnswer& answer :
             {errorPage(404), page(QByteArray(12, 'x')), page(strange), page(empty)}) {
            services.on(hosts::accurateRip, "/", answer);
            WindowDriver app(language, drive());
            rip(app);
            verify(app);
            expectNoVerdict(app, {found, text, found, QStringLiteral("  Not in database")});
        }
    }
}

TEST_F(VerifyTrouble, AFileThatIsCutOffCountsAsFarAsItCame)
{
    WindowDriver app(2, drive());
    rip(app);
    const QByteArray whole =
        accuraterip::pressing(ids.discId1, ids.discId2, ids.cddbId,
                              {{12, ripCrcs.value(1).second, 1}, {3, ripCrcs.value(2).second, 1}});
    ServedAnswer cut = page(whole);
    cut.breakAfter = whole.size() - 4;
    services.on(hosts::accurateRip, "/", cut);
    verify(app);
    EXPECT_EQ(verdict(app), QStringLiteral("◈  Partial mismatch"));
    EXPECT_EQ(column(app, 0), QStringLiteral("✦  Match (12)"));
    EXPECT_EQ(column(app, 1), QStringLiteral("—  Not found"));
}

TEST_F(VerifyTrouble, ATrackThatWasNotSavedIsAMismatchWithoutChecksum)
{
    for (const int language : {1, 2}) {
        WindowDriver app(language, drive());
        app.shelf().audio = makeAudio(600, 1);
        app.shelf().tracks = {{0}, {100}};
        prepareRip(app);
        {
            const FileSizeLimit full(700'000); // 100 sectors fit, 500 do not
            app.runRip();
        }
        ASSERT_TRUE(ripCrcs.contains(1));
        ASSERT_FALSE(ripCrcs.contains(2));
        ids = computeAccurateRipIds(discOfTracks({{0}, {100}}));
        serve({{12, ripCrcs.value(1).second, 1}, {3, 0x12345678, 1}});
        verify(app);
        EXPECT_EQ(verdict(app),
                  language == 1 ? QStringLiteral("◈  一部不一致") : QStringLiteral("◈  Partial mismatch"));
        EXPECT_EQ(detail(app),
                  language == 1
                      ? QStringLiteral("一部のトラックがAccurateRip "
                                       "DBと一致しませんでした。\n傷やドライブの問題の可能性があります。")
                      : QStringLiteral("Some tracks did not match the AccurateRip database.\n"
                                       "The disc may be scratched or the drive may have a problem."));
        EXPECT_EQ(column(app, 1),
                  language == 1 ? QStringLiteral("◈  不一致") : QStringLiteral("◈  Mismatch"));
        EXPECT_TRUE(app.logLines().contains(QStringLiteral("  Track 02  [00000000]  ** MISMATCH **")));
    }
}

TEST_F(VerifyTrouble, NoMatchAtAllSpeaksBothLanguages)
{
    for (const int language : {1, 2}) {
        WindowDriver app(language, drive());
        rip(app);
        serve({{12, 0x12345678, 1}, {3, 0x87654321, 7}});
        verify(app);
        EXPECT_EQ(verdict(app), language == 1 ? QStringLiteral("—  未登録/不一致")
                                              : QStringLiteral("—  Not found / Mismatch"));
        EXPECT_EQ(
            detail(app),
            language == 1
                ? QStringLiteral("このプレスはAccurateRipデータベースに登録されていないか、\n"
                                 "いずれのトラックも一致しませんでした。\n"
                                 "傷の無いCDで全曲が不一致の場合は、Settingsの「Sample offset」が\n"
                                 "ドライブに合っていない可能性があります。")
                : QStringLiteral("This pressing is not in the AccurateRip database,\n"
                                 "or none of the tracks matched.\n"
                                 "If every track of an undamaged disc mismatches, the \"Sample offset\"\n"
                                 "in Settings may not match your drive."));
        EXPECT_EQ(app.logLines().last(5),
                  (QStringList{QStringLiteral("  Disc ID : ") + accurateRipDiscId(ids),
                               QStringLiteral("  Track 01  [%1]  ** MISMATCH **").arg(crcText(1)),
                               QStringLiteral("  Track 02  [%1]  ** MISMATCH **").arg(crcText(2)),
                               QStringLiteral("  0 / 2 tracks accurately ripped"), logRule}));
    }
}

TEST_F(VerifyTrouble, AMatchOfConfidenceZeroIsAMatch)
{
    for (const quint8 ofTheSecond : {quint8{0}, quint8{7}}) {
        WindowDriver app(2, drive());
        rip(app);
        serve({{0, ripCrcs.value(1).second, 1}, {ofTheSecond, ripCrcs.value(2).first, 1}});
        verify(app);
        EXPECT_EQ(verdict(app), QStringLiteral("✦  Match  — Confidence 0"));
        EXPECT_EQ(column(app, 0), QStringLiteral("✦  Match (0)"));
        EXPECT_EQ(column(app, 1), QStringLiteral("✦  Match (%1)").arg(ofTheSecond));
    }
}

TEST_F(VerifyTrouble, ADataTrackBehindTheAudioDoesNotSpoilAMatch)
{
    for (const int language : {1, 2}) {
        WindowDriver app(language, drive());
        rip(app, {{0}, {200}, {400, true}});
        serve({{5, ripCrcs.value(1).second, 1}, {6, ripCrcs.value(2).second, 1}});
        verify(app);
        EXPECT_EQ(verdict(app), language == 1 ? QStringLiteral("✦  一致  — 信頼度 5")
                                              : QStringLiteral("✦  Match  — Confidence 5"));
        EXPECT_EQ(column(app, 2), language == 1 ? QStringLiteral("—  データ") : QStringLiteral("—  Data"));
        EXPECT_EQ(app.verdicts()->item(2, 2)->foreground(), QBrush());
        EXPECT_EQ(app.logLines().filter(QStringLiteral("  Track 03  [")).size(), 0);
        EXPECT_EQ(app.logLines().value(app.logLines().size() - 2),
                  QStringLiteral("  2 / 2 tracks accurately ripped"));
    }
}

TEST_F(VerifyTrouble, ADiscWithoutAudioAsksNobody)
{
    for (const int language : {1, 2}) {
        WindowDriver app(language, drive());
        rip(app, {{0, true}});
        verify(app);
        const QString found = language == 1 ? QStringLiteral("—  未登録") : QStringLiteral("—  Not found");
        expectNoVerdict(app, {found,
                              language == 1 ? QStringLiteral("音声トラックがありません。")
                                            : QStringLiteral("There are no audio tracks."),
                              found, QStringLiteral("  Not in database")});
    }
    EXPECT_TRUE(services.targets(hosts::accurateRip).isEmpty());
}

TEST_F(VerifyTrouble, FinishIsOnAndTheVerdictOutlivesAReset)
{
    services.onInTurn(hosts::accurateRip, "/", {silence(), errorPage(404)});
    WindowDriver app(2, drive());
    rip(app);
    WindowDriver::click(app.next());
    EXPECT_TRUE(app.next()->isEnabled());
    EXPECT_EQ(app.next()->text(), QStringLiteral("Finish"));
    EXPECT_EQ(verdict(app), QStringLiteral("Verifying..."));
    EXPECT_EQ(detail(app), QStringLiteral("Querying the AccurateRip database"));
    EXPECT_EQ(column(app, 0), QStringLiteral("—"));
    while (app.step() > 0)
        WindowDriver::click(app.back());
    WindowDriver::click(app.reset());
    services.transport().stop(); // the verification ends, over a window that holds no disc
    EXPECT_TRUE(QTest::qWaitFor([&] { return bar(app)->value() == 100; }, 60000));
    EXPECT_EQ(verdict(app), QStringLiteral("—  Could not verify"));
    EXPECT_EQ(app.logLines().last(3),
              (QStringList{QStringLiteral("  Disc ID : ") + accurateRipDiscId(ids),
                           QStringLiteral("  Could not connect to the AccurateRip server"), logRule}))
        << "of the disc that it was started on";
}

TEST_F(VerifyTrouble, TheWindowMayGoWhileAVerificationRuns)
{
    services.on(hosts::accurateRip, "/", silence());
    WindowDriver app(2, drive());
    rip(app);
    WindowDriver::click(app.next());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !services.targets(hosts::accurateRip).isEmpty(); }, 60000));
    QElapsedTimer time;
    time.start();
    app.destroyWindow();
    EXPECT_LT(time.elapsed(), 5000);
    services.transport().stop();
    waitForBackground();
    EXPECT_LT(time.elapsed(), 5000);
    QTest::qWait(20);
}

TEST_F(VerifyTrouble, TheWindowMayGoInTheMomentInWhichAVerificationEnds)
{
    WindowDriver app(2, drive());
    rip(app);
    WindowDriver::click(app.next());
    waitForBackground(); // its end waits in the queue of events
    app.destroyWindow();
    QTest::qWait(20);
}
