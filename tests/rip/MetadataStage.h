#pragma once

#include <gtest/gtest.h>

#include "RunRecorder.h"
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

/// What the worker knew when its step had ended.
struct Announced {
    QString artist;
    QString album;
    QString year;
    QPixmap cover;
    QStringList titles;
    QStringList lines; ///< the worker's debug lines so far
};

/// What the user left to the step.
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

    /// Rips the disc of three tracks; the step's outcome, if it told one.
    std::optional<Announced> step(const Typed& typed, OutputFormat format = OutputWav)
    {
        announced.reset();
        const LogCapture log;
        EXPECT_TRUE(run.drive.open(CdDrive::enumerateDrives().constFirst()));
        DiscToc disc = run.drive.readToc();
        for (qsizetype i = 0; i < typed.titles.size(); ++i)
            disc.tracks[i].title = typed.titles[i];
        const auto connection =
            QObject::connect(&run.worker, &RipWorker::metadataReady,
                             [&](const QString& artist, const QString& album, const QString& year,
                                 const QPixmap& cover, const QList<TrackInfo>& tracks) {
                                 EXPECT_FALSE(announced) << "announced twice";
                                 announced = Announced{artist, album, year, cover, {}, {}};
                                 for (const TrackInfo& track : tracks)
                                     announced->titles << track.title;
                                 announced->lines = log.debugLines().filter(QStringLiteral("[RipWorker]"));
                             });
        run.worker.configure(&run.drive, disc, folder.path(), typed.artist, typed.album, typed.year,
                             typed.cover, typed.discogsToken, 1, 1, 300, format, QString(), 20);
        run.worker.run();
        QObject::disconnect(connection);
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

    QTemporaryDir folder;
    LoopbackServices services;
    SimulatedDrive shelf;
    DrivePlatformOverride platform{shelf};
    RunRecorder run;
    std::optional<Announced> announced;
};
