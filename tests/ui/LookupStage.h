#pragma once

#include "ui/ServiceStage.h"

namespace lookups {

inline const QByteArray discQuery = "/ws/2/discid/";
inline const QByteArray textQuery = "/ws/2/release/?query=";
inline const QByteArray gnudbQuery = "/~cddb/cddb.cgi?cmd=cddb+query+";
inline const QByteArray gnudbRead = "/~cddb/cddb.cgi?cmd=cddb+read+";

} // namespace lookups

/// A window whose Metadata step asks services on this machine.
class LookupStage : public ServiceStage {
protected:
    static void loadDisc(WindowDriver& app, const QList<SimulatedTrack>& tracks = {{0}, {200}})
    {
        app.shelf().audio = makeAudio(400, 1);
        app.shelf().tracks = tracks;
    }

    /// To the Metadata step, until its lookup has ended.
    static void enterMetadata(WindowDriver& app)
    {
        app.advanceTo(2);
        ASSERT_EQ(app.step(), 2);
        ASSERT_TRUE(app.next()->isEnabled());
    }

    static void waitForLookup(WindowDriver& app)
    {
        ASSERT_TRUE(QTest::qWaitFor([&] { return app.next()->isEnabled(); }, 60000));
    }

    static QStringList titles(WindowDriver& app)
    {
        QStringList found;
        for (int row = 0; row < app.tracks()->rowCount(); ++row)
            found << app.cell(app.tracks(), row, 1);
        return found;
    }

    static QPixmap cover(WindowDriver& app) { return app.onPage<QLabel>(2, "artLabel")->pixmap(); }
    static bool hasCover(WindowDriver& app) { return !cover(app).isNull(); }
    /// Width by height of the cover shown, which tells test pictures apart.
    static double coverRatio(WindowDriver& app)
    {
        const QPixmap shown = cover(app);
        return shown.isNull() ? 0 : double(shown.width()) / shown.height();
    }

    QString makeCue()
    {
        ImageDescription image;
        image.tracks = {{0, QStringLiteral("Alpha")}, {60, QStringLiteral("Beta")}};
        return writeImage(folder.path(), image, makeAudio(120, 1));
    }

    void answerRelease(const ServedRelease& release)
    {
        services.on(hosts::musicBrainz, lookups::discQuery,
                    json(musicbrainz::discAnswer({musicbrainz::release(release)})));
    }

    void answerGnuDb(const QStringList& recordTitles)
    {
        ServedRecord record;
        record.titles = recordTitles;
        services.on(hosts::gnuDb, lookups::gnudbQuery, page(gnudb::exactMatch(record)));
        services.on(hosts::gnuDb, lookups::gnudbRead, page(gnudb::recordAnswer(record)));
    }

    /// An album with two songs and a square picture.
    void answerItunes()
    {
        const ServedAlbum album;
        services.on(hosts::iTunes, "/search", json(itunes::answer({itunes::album(album)})));
        services.on(hosts::iTunes, "/lookup",
                    json(itunes::songAnswer(
                        album, {{1, 1, QStringLiteral("Reed")}, {1, 2, QStringLiteral("Rain")}})));
        services.on(hosts::images, "/", image(picture(30, 30)));
    }
};
