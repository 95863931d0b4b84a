#include "endurance/WalkStage.h"

#include "support/DiscMaker.h"
#include "support/ServiceAnswers.h"
#include "ui/Background.h"

#include <QDir>

namespace {

ServedAnswer slowly(ServedAnswer answer)
{
    answer.pieceBytes = static_cast<int>(answer.body.size() / 10) + 1;
    answer.pieceMilliseconds = 15;
    return answer;
}

} // namespace

WalkStage::WalkStage()
{
    for (const char* name : {"out", "two", "songs", "none"})
        QDir(folder.path()).mkpath(QLatin1String(name));
    ImageDescription image;
    image.tracks = {{0, QStringLiteral("Alpha")}, {60, QStringLiteral("Beta")}};
    writeImage(folder.path(), image, makeAudio(120, 1));
    image.tracks = {{0, QString()}};
    writeImage(path(QStringLiteral("two")), image, makeAudio(30, 2));
    for (int i = 0; i < 3; ++i)
        writeFile(path(QStringLiteral("songs")), QStringLiteral("%1.wav").arg(i),
                  wrapInWave(makeAudio(20, static_cast<quint32>(i))));
    writeFile(folder.path(), QStringLiteral("cover.png"), picture(40, 30));
    // Where a dialog begins that is told no folder.
    QDir::setCurrent(folder.path());
    serve();
}

WalkStage::~WalkStage()
{
    services.transport().stop();
    waitForBackground();
    QDir::setCurrent(QDir::rootPath());
}

QStringList WalkStage::sheets() const
{
    return {path(QStringLiteral("disc.cue")), path(QStringLiteral("two/disc.cue")),
            path(QStringLiteral("missing.cue"))};
}

QStringList WalkStage::songs() const
{
    return {path(QStringLiteral("songs/0.wav")), path(QStringLiteral("songs/1.wav")),
            path(QStringLiteral("missing.wav"))};
}

QStringList WalkStage::pictures() const
{
    return {path(QStringLiteral("cover.png")), path(QStringLiteral("disc.cue"))};
}

QStringList WalkStage::folders() const
{
    return {path(QStringLiteral("songs")), path(QStringLiteral("none")), path(QStringLiteral("missing")),
            output()};
}

QStringList WalkStage::outputs() const
{
    // The second can't be made.
    return {output(), path(QStringLiteral("cover.png/below")), output() + QStringLiteral("/further")};
}

void WalkStage::serve()
{
    ServedRelease release;
    release.media = {{1, {QStringLiteral("Reed"), QStringLiteral("Rain")}}, {2, {QStringLiteral("Mud")}}};
    const auto found = json(musicbrainz::discAnswer({musicbrainz::release(release)}));
    QList<ServedAnswer> releases;
    QList<ServedAnswer> pictures;
    for (int round = 0; round < 1000; ++round) {
        releases << errorPage(404) << slowly(found) << errorPage(500) << found;
        pictures << errorPage(404) << image(picture(30, 30)) << slowly(image(picture(20, 40)));
    }
    services.onInTurn(hosts::musicBrainz, "/", releases);
    services.onInTurn(hosts::coverArtArchive, "/", pictures);
    ServedRecord record;
    record.titles = {QStringLiteral("One"), QStringLiteral("Two")};
    services.on(hosts::gnuDb, "/~cddb/cddb.cgi?cmd=cddb+query+", page(gnudb::exactMatch(record)));
    services.on(hosts::gnuDb, "/~cddb/cddb.cgi?cmd=cddb+read+", slowly(page(gnudb::recordAnswer(record))));
    services.onInTurn(hosts::accurateRip, "/",
                      {errorPage(404), slowly(page(QByteArray(100, 'x'))), errorPage(404)});
}
