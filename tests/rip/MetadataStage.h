#pragma once

#include <gtest/gtest.h>

#include "RecordingReport.h"
#include "disc/CdDrive.h"
#include "rip/MetadataStep.h"
#include "support/DiscMaker.h"
#include "support/LogCapture.h"
#include "support/LoopbackServices.h"
#include "support/ServiceAnswers.h"
#include "support/SimulatedDrive.h"

#include <optional>

inline const QByteArray discQuery = "/ws/2/discid/";
inline const QByteArray textQuery = "/ws/2/release/?query=";
inline const QByteArray gnudbQuery = "/~cddb/cddb.cgi?cmd=cddb+query+";
inline const QByteArray gnudbRead = "/~cddb/cddb.cgi?cmd=cddb+read+";
inline const QString okLine = QStringLiteral("[RipWorker] MusicBrainz OK: Still Water");
inline const QString gnudbLine = QStringLiteral("[RipWorker] MusicBrainz not found, trying GnuDB");
inline const QString coverLine = QStringLiteral("[RipWorker] Fetching cover art via CoverArt");

/// What was known when the step had ended.
struct Announced {
    QString artist;
    QString album;
    QString year;
    QPixmap cover;
    QStringList titles;
    QStringList lines; ///< of the run's subject in the debug log
};

/// What the user typed, and so did not leave to the step.
struct Typed {
    QString artist;
    QString album;
    QString year;
    QStringList titles;
    QPixmap cover;
    QString discogsToken;
};

class MetadataStep : public ::testing::Test {
protected:
    MetadataStep()
    {
        shelf.audio = makeAudio(90, 3);
        shelf.tracks = {{0}, {30}, {60}};
    }

    /// Takes the step for the disc of three tracks; its outcome, told once, behind
    /// the one word in front.
    std::optional<Announced> step(const Typed& typed)
    {
        announced.reset();
        said.said.clear();
        said.announced.clear();
        CdDrive drive;
        EXPECT_TRUE(drive.open(CdDrive::enumerateDrives().constFirst()));
        order = RipOrder();
        order.disc = drive.readToc();
        order.artist = typed.artist;
        order.album = typed.album;
        order.year = typed.year;
        order.cover = typed.cover;
        order.discogsToken = typed.discogsToken;
        for (qsizetype i = 0; i < typed.titles.size(); ++i)
            order.disc.tracks[i].title = typed.titles[i];
        const LogCapture log;
        runMetadataStep(order, said);
        EXPECT_EQ(said.said, (QStringList{QStringLiteral("begins 0/3 Fetching metadata..."),
                                          QStringLiteral("metadata ") + order.album}));
        if (said.announced.size() != 1)
            return std::nullopt;
        const RipOrder& told = said.announced.constFirst();
        announced = Announced{told.artist, told.album, told.year, told.cover, {}, {}};
        for (const TrackInfo& track : told.disc.tracks)
            announced->titles << track.title;
        announced->lines = log.debugLines().filter(QStringLiteral("[RipWorker]"));
        warnings = log.warnings();
        return announced;
    }

    void answerRelease(const ServedRelease& release)
    {
        services.on(hosts::musicBrainz, discQuery,
                    json(musicbrainz::discAnswer({musicbrainz::release(release)})));
    }

    static ServedRelease releaseOf(const QStringList& titles)
    {
        ServedRelease release;
        release.media = {{1, titles}};
        return release;
    }

    void answerGnuDb()
    {
        ServedRecord record;
        record.discTitle = QStringLiteral("Reed Choir / Low Tide");
        record.year = QStringLiteral("1987");
        record.titles = {QStringLiteral("One"), QStringLiteral("Two"), QStringLiteral("Three")};
        services.on(hosts::gnuDb, gnudbQuery, page(gnudb::exactMatch(record)));
        services.on(hosts::gnuDb, gnudbRead, page(gnudb::recordAnswer(record)));
    }

    void answerITunes(int width)
    {
        services.on(hosts::iTunes, "/search", json(itunes::answer({itunes::album({})})));
        services.on(hosts::images, "/art/600x600bb.jpg", image(picture(width, width)));
    }

    /// Everything that was asked for, as host and target.
    QStringList asked() const
    {
        QStringList found;
        for (const ServedRequest& request : services.requests())
            found << QString::fromUtf8(request.host + request.target);
        return found;
    }

    LoopbackServices services;
    SimulatedDrive shelf;
    DrivePlatformOverride platform{shelf};
    RipOrder order;
    RecordingReport said;
    std::optional<Announced> announced;
    QStringList warnings; ///< of all subjects
};
