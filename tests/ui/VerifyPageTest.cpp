// The Verify step over a database on this machine.

#include "ui/WindowDriver.h"

#include "support/DiscMaker.h"
#include "support/LoopbackServices.h"
#include "support/ServiceAnswers.h"
#include "verify/AccurateRipDatabase.h"

#include <QLabel>
#include <QProgressBar>
#include <QRadioButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {

const QString rule = QStringLiteral("═══════════════════════════════════════");

class VerifyPage : public ::testing::Test {
protected:
    void SetUp() override { QSettings().clear(); }

    /// Rips a disc of two tracks, up to its result box.
    void rip(WindowDriver& app, const QList<SimulatedTrack>& tracks = {{0}, {300}})
    {
        app.shelf().audio = makeAudio(600, 1);
        app.shelf().tracks = tracks;
        app.outputPath()->setText(folder.path());
        app.advanceTo(1);
        app.onPage<QRadioButton>(1, "fmtRadio", 1)->click();
        app.advanceTo(3);
        app.runRip();
        ids = computeAccurateRipIds(discOfTracks(tracks));
    }

    static DiscToc discOfTracks(const QList<SimulatedTrack>& tracks)
    {
        DiscToc disc;
        for (const SimulatedTrack& track : tracks) {
            TrackInfo info;
            info.startLba = track.startLba;
            info.isData = track.isData;
            disc.tracks.append(info);
        }
        disc.totalSectors = 600;
        return disc;
    }

    void serve(const QList<accuraterip::Entry>& entries)
    {
        services.on(hosts::accurateRip, "/accuraterip/",
                    page(accuraterip::pressing(ids.discId1, ids.discId2, ids.cddbId, entries)));
    }

    void verify(WindowDriver& app)
    {
        WindowDriver::click(app.next());
        ASSERT_EQ(app.step(), 4);
        auto* bar = app.onPage<QProgressBar>(4, "ripProgress");
        EXPECT_EQ(bar->value(), 15);
        ASSERT_TRUE(QTest::qWaitFor([&] { return bar->value() == 100; }, 60000));
    }

    QString verdict(WindowDriver& app) { return app.onPage<QLabel>(4, "verifyResult")->text(); }
    QString detail(WindowDriver& app) { return app.onPage<QLabel>(4, "verifyDetail")->text(); }
    QString column(WindowDriver& app, int row) { return app.cell(app.verdicts(), row, 2); }
    static QString crcText(int number)
    {
        return QStringLiteral("%1").arg(ripCrcs.value(number).second, 8, 16, QChar(u'0')).toUpper();
    }

    QTemporaryDir folder;
    LoopbackServices services;
    AccurateRipIds ids;
};

} // namespace

TEST_F(VerifyPage, EveryTrackMatchesByEitherVersion)
{
    for (const int language : {1, 2}) {
        WindowDriver app(language, {QStringLiteral("/dev/sr0")});
        rip(app);
        serve({{12, ripCrcs.value(1).first, 1}, {3, ripCrcs.value(2).second, 1}});
        verify(app);
        EXPECT_EQ(verdict(app), language == 1 ? QStringLiteral("✦  一致  — 信頼度 3")
                                              : QStringLiteral("✦  Match  — Confidence 3"));
        EXPECT_EQ(column(app, 0), language == 1 ? QStringLiteral("✦  一致 (12)") : QStringLiteral("✦  Match (12)"));
        EXPECT_EQ(app.verdicts()->item(0, 2)->foreground().color(), QColor(0x4d, 0xb8, 0xff));
        EXPECT_EQ(detail(app),
                  language == 1
                      ? QStringLiteral("AccurateRip DB と完全一致しました。\nこのリッピングデータは信頼できます。")
                      : QStringLiteral("Exact match with the AccurateRip database.\nThis rip is accurate."));
        const QStringList log = app.logLines();
        EXPECT_EQ(log.last(7),
                  (QStringList{QString(), QStringLiteral("─── AccurateRip (v2 CRC) ───────────"),
                               QStringLiteral("  Disc ID : ") + accurateRipDiscId(ids),
                               QStringLiteral("  Track 01  [%1]  accurately ripped (confidence 12)").arg(crcText(1)),
                               QStringLiteral("  Track 02  [%1]  accurately ripped (confidence 3)").arg(crcText(2)),
                               QStringLiteral("  2 / 2 tracks accurately ripped"), rule}));
    }
}

TEST_F(VerifyPage, OneMismatchIsAPartialVerdict)
{
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
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
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    rip(app);
    serve({{12, 0x12345678, 1}, {3, 0, 7}});
    verify(app);
    EXPECT_EQ(verdict(app), QStringLiteral("—  Not found / Mismatch"));
    EXPECT_TRUE(detail(app).contains(QStringLiteral("\"Sample offset\"")));
    EXPECT_EQ(column(app, 0), QStringLiteral("◈  Mismatch"));
    EXPECT_EQ(column(app, 1), QStringLiteral("—  Not found"));
    EXPECT_EQ(app.verdicts()->item(1, 2)->foreground().color(), QColor(0x8a, 0x8f, 0x98));
}

TEST_F(VerifyPage, ADiscThatIsNotInTheDatabase)
{
    for (const int language : {1, 2}) {
        WindowDriver app(language, {QStringLiteral("/dev/sr0")});
        rip(app);
        verify(app);
        const QString notFound = language == 1 ? QStringLiteral("—  未登録") : QStringLiteral("—  Not found");
        EXPECT_EQ(verdict(app), notFound);
        EXPECT_EQ(column(app, 0), notFound);
        EXPECT_EQ(app.logLines().last(4),
                  (QStringList{QStringLiteral("─── AccurateRip ────────────────────"),
                               QStringLiteral("  Disc ID : ") + accurateRipDiscId(ids),
                               QStringLiteral("  Not in database"), rule}));
    }
}

TEST_F(VerifyPage, AServerErrorCouldNotVerify)
{
    services.on(hosts::accurateRip, "/", errorPage(503));
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
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
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    rip(app, {{0, true}, {200}, {400}});
    serve({{5, ripCrcs.value(3).second, 1}, {6, ripCrcs.value(2).second, 1}});
    verify(app);
    EXPECT_EQ(column(app, 0), QStringLiteral("—  Data"));
    EXPECT_EQ(column(app, 1), QStringLiteral("✦  Match (6)"));
    EXPECT_EQ(column(app, 2), QStringLiteral("—  Not found"));
    EXPECT_EQ(verdict(app), QStringLiteral("◈  Partial mismatch"));
}
