#pragma once

#include "ui/ServiceStage.h"

#include "verify/AccurateRipDatabase.h"

#include <QLabel>
#include <QProgressBar>
#include <QRadioButton>

/// The rule under every block of the rip log.
inline const QString logRule = QStringLiteral("═══════════════════════════════════════");

/// A window that verifies its rips against a database on this machine.
class VerifyStage : public ServiceStage {
protected:
    /// Rips a disc of two tracks, up to its result box.
    void rip(WindowDriver& app, const QList<SimulatedTrack>& tracks = {{0}, {300}})
    {
        app.shelf().audio = makeAudio(600, 1);
        app.shelf().tracks = tracks;
        prepareRip(app);
        app.runRip();
        ids = computeAccurateRipIds(discOfTracks(tracks));
    }

    /// To the RIP step, with WAV files as the choice.
    void prepareRip(WindowDriver& app)
    {
        app.outputPath()->setText(folder.path());
        app.advanceTo(1);
        app.onPage<QRadioButton>(1, "fmtRadio", 1)->click();
        app.advanceTo(3);
    }

    static DiscToc discOfTracks(const QList<SimulatedTrack>& tracks, quint32 totalSectors = 600)
    {
        DiscToc disc;
        for (const SimulatedTrack& track : tracks) {
            TrackInfo info;
            info.startLba = track.startLba;
            info.isData = track.isData;
            disc.tracks.append(info);
        }
        disc.totalSectors = totalSectors;
        return disc;
    }

    void serve(const QList<accuraterip::Entry>& entries)
    {
        services.on(hosts::accurateRip, "/accuraterip/",
                    page(accuraterip::pressing(ids.discId1, ids.discId2, ids.cddbId, entries)));
    }

    static QProgressBar* bar(WindowDriver& app) { return app.onPage<QProgressBar>(4, "ripProgress"); }

    void verify(WindowDriver& app)
    {
        WindowDriver::click(app.next());
        ASSERT_EQ(app.step(), 4);
        EXPECT_EQ(bar(app)->value(), 15);
        ASSERT_TRUE(QTest::qWaitFor([&] { return bar(app)->value() == 100; }, 60000));
    }

    static QString verdict(WindowDriver& app) { return app.onPage<QLabel>(4, "verifyResult")->text(); }
    static QString detail(WindowDriver& app) { return app.onPage<QLabel>(4, "verifyDetail")->text(); }
    static QString column(WindowDriver& app, int row) { return app.cell(app.verdicts(), row, 2); }
    static QString crcText(int number)
    {
        return QStringLiteral("%1").arg(ripCrcs.value(number).second, 8, 16, QChar(u'0')).toUpper();
    }

    AccurateRipIds ids;
};
