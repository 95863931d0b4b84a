#include "endurance/LongRunStage.h"

#include "convert/FolderOfAudio.h"
#include "endurance/WholeFile.h"

#include <QPixmapCache>

#include <utility>
#include <vector>

namespace {

struct Row {
    const char* part;
    int times;
    double seconds;
    ProcessLevel before;
    ProcessLevel after;
};

std::vector<Row>& rows()
{
    static std::vector<Row> kept;
    return kept;
}

QByteArray change(qint64 before, qint64 after)
{
    return QByteArray::number(before) + " -> " + QByteArray::number(after);
}

/// A rip, a disc or a file that held on to even this little would be seen.
constexpr qint64 heapBound = 32 * 1024;

} // namespace

void LongRunStage::TearDownTestSuite()
{
    std::printf("\n%-16s %6s %8s  %-18s %-18s %-12s %s\n", "part", "times", "seconds", "heap KiB",
                "resident KiB", "handles", "threads");
    for (const auto& [part, times, seconds, before, after] : rows())
        std::printf("%-16s %6d %8.1f  %-18s %-18s %-12s %s\n", part, times, seconds,
                    change(before.heapBytes / 1024, after.heapBytes / 1024).constData(),
                    change(before.residentBytes / 1024, after.residentBytes / 1024).constData(),
                    change(before.handles, after.handles).constData(),
                    change(before.threads, after.threads).constData());
    rows().clear();
}

qint64 LongRunStage::repeat(const Part& part, const std::function<void(quint32 seed)>& attempt)
{
    for (quint32 seed = 0; seed < part.warmUp; ++seed)
        attempt(seed);
    const ProcessLevel before = settledLevel();
    QElapsedTimer time;
    time.start();
    const QByteArray verdict = part.tries.each(attempt);
    const double seconds = static_cast<double>(time.elapsed()) / 1000;
    const ProcessLevel after = settledLevel();
    const int times = part.tries.count() * part.each;
    rows().push_back({part.name, times, seconds, before, after});

    const qint64 growth = after.heapBytes - before.heapBytes;
    std::printf("%d %s, seeds %u to %u: %s. The heap grew by %lld bytes.\n", times, part.name,
                part.tries.first(), part.tries.last(), verdict.constData(), static_cast<long long>(growth));
    EXPECT_EQ(after.handles, before.handles);
    EXPECT_EQ(after.threads, before.threads);
    EXPECT_LE(growth, heapBound + part.tries.count() * part.allowedBytes);
    return growth;
}

ProcessLevel LongRunStage::settledLevel()
{
    waitForBackground();
    services.forgetRequests();
    QPixmapCache::clear(); // has a bound, and is far from it
    EXPECT_TRUE(QTest::qWaitFor([this] { return services.openConnections() == 0; }, 60000));
    ProcessLevel level = processLevel();
    // What has ended may still be on its way out.
    constexpr int lookMilliseconds = 100;
    for (bool moving = true; moving;) {
        QTest::qWait(lookMilliseconds);
        const ProcessLevel next = processLevel();
        moving = next.threads != level.threads || next.handles != level.handles;
        level = next;
    }
    return level;
}

void LongRunStage::loadDisc(WindowDriver& app, int trackCount)
{
    app.shelf().audio = makeAudio(trackCount * trackSectors, 1);
    app.shelf().tracks.clear();
    for (int track = 0; track < trackCount; ++track)
        app.shelf().tracks.append(SimulatedTrack{static_cast<quint32>(track * trackSectors)});
    ids = computeAccurateRipIds(
        discOfTracks(app.shelf().tracks, static_cast<quint32>(trackCount * trackSectors)));
}

void LongRunStage::answerLookups(int trackCount)
{
    ServedRelease release;
    release.media = {{1, QStringList(trackCount, QStringLiteral("Reed"))}};
    services.on(hosts::musicBrainz, "/", json(musicbrainz::discAnswer({musicbrainz::release(release)})));
    services.on(hosts::coverArtArchive, "/", image(picture(30, 30)));
}

void LongRunStage::serveChecksums(int trackCount)
{
    QList<accuraterip::Entry> entries;
    for (int track = 1; track <= trackCount; ++track)
        entries.append({1, ripCrcs.value(track).second, 1});
    serve(entries);
}

void LongRunStage::ripAndReset(WindowDriver& app, int format, int trackCount, bool verifies)
{
    app.advanceTo(1);
    app.outputPath()->setText(folder.filePath(QStringLiteral("out")));
    app.onPage<QRadioButton>(1, "fmtRadio", format)->click();
    app.advanceTo(3);
    ASSERT_EQ(app.step(), 3);
    constexpr int patienceMilliseconds = 1'800'000; // 99 tracks under the sanitizers
    ASSERT_EQ(app.runRip(patienceMilliseconds).value(0), QStringLiteral("Rip Complete"));
    const QStringList saved = app.logLines().filter(QStringLiteral(": ✦ saved  (errors:0)"));
    EXPECT_EQ(saved.size(), trackCount) << app.logLines().join(u'\n').toStdString();
    if (verifies) {
        // The first rip is the one that is known to the database.
        if (!std::exchange(inDatabase, true))
            serveChecksums(trackCount);
        verify(app);
        EXPECT_EQ(verdict(app).toStdString(), "✦  Match  — Confidence 1");
    }
    while (app.step() > 0) {
        WindowDriver::click(app.back());
        EXPECT_TRUE(QTest::qWaitFor([&] { return app.step() != 2 || app.next()->isEnabled(); }, 60000));
    }
    WindowDriver::click(app.reset());
    app.shelf().commands = {};
}

void LongRunStage::expectTracks(const QByteArray& audio, int trackCount)
{
    QDir out(folder.filePath(QStringLiteral("out")));
    QStringList tracks;
    for (const QString& name : FolderOfAudio::below(out.path())) {
        if (QFileInfo(out.filePath(name)).isFile() && !name.endsWith(QLatin1String("cover.jpg")))
            tracks << out.filePath(name);
    }
    EXPECT_EQ(tracks.size(), trackCount) << tracks.join(u'\n').toStdString();
    for (qsizetype track = 0; track < tracks.size(); ++track)
        EXPECT_EQ(faultOf(tracks[track], audio.mid(track * trackBytes, trackBytes)).toStdString(), "")
            << tracks[track].toStdString();
    out.removeRecursively();
}
