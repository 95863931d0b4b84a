// The Metadata step filled by the lookup services, over real connections on this
// machine.

#include "ui/WindowDriver.h"

#include "support/DiscMaker.h"
#include "support/LoopbackServices.h"
#include "support/ServiceAnswers.h"

#include <QSettings>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>

#include <gtest/gtest.h>

namespace {

const QByteArray discQuery = "/ws/2/discid/";
const QByteArray gnudbQuery = "/~cddb/cddb.cgi?cmd=cddb+query+";
const QByteArray gnudbRead = "/~cddb/cddb.cgi?cmd=cddb+read+";

class LookupRoad : public ::testing::Test {
protected:
    void SetUp() override { QSettings().clear(); }
    // A lookup may outlive its window, but not the services that it asks.
    void TearDown() override
    {
        services.transport().stop();
        QThreadPool::globalInstance()->waitForDone();
    }

    void loadDisc(WindowDriver& app)
    {
        app.shelf().audio = makeAudio(400, 1);
        app.shelf().tracks = {{0}, {200}};
    }

    /// To the Metadata step, until its lookup has ended.
    void enterMetadata(WindowDriver& app)
    {
        app.advanceTo(2);
        ASSERT_EQ(app.step(), 2);
        ASSERT_TRUE(QTest::qWaitFor([&] { return app.next()->isEnabled(); }, 60000));
    }

    QStringList titles(WindowDriver& app)
    {
        QStringList found;
        for (int row = 0; row < app.tracks()->rowCount(); ++row)
            found << app.cell(app.tracks(), row, 1);
        return found;
    }

    bool hasCover(WindowDriver& app) { return !app.onPage<QLabel>(2, "artLabel")->pixmap().isNull(); }

    QString makeCue()
    {
        ImageDescription image;
        image.tracks = {{0, QStringLiteral("Alpha")}, {60, QStringLiteral("Beta")}};
        return writeImage(folder.path(), image, makeAudio(120, 1));
    }

    void answerItunes()
    {
        const ServedAlbum album;
        services.on(hosts::iTunes, "/search", json(itunes::answer({itunes::album(album)})));
        services.on(hosts::iTunes, "/lookup",
                    json(itunes::songAnswer(album, {{1, 1, QStringLiteral("Reed")}, {1, 2, QStringLiteral("Rain")}})));
        services.on(hosts::images, "/", image(picture(30, 30)));
    }

    QTemporaryDir folder;
    LoopbackServices services;
};

} // namespace

TEST_F(LookupRoad, MusicBrainzFillsThePageAndTellsTheDiscOfASet)
{
    ServedRelease release;
    release.media = {{1, {QStringLiteral("夜"), QStringLiteral("Rain"), QStringLiteral("Third")}},
                     {2, {QStringLiteral("Other"), QStringLiteral("Two")}}};
    services.on(hosts::musicBrainz, discQuery, json(musicbrainz::discAnswer({musicbrainz::release(release)})));
    services.on(hosts::coverArtArchive, "/release/" + release.id.toUtf8() + "/front-500", image(picture(40, 30)));
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    loadDisc(app);
    enterMetadata(app);
    EXPECT_EQ(app.album()->text(), QStringLiteral("Still Water"));
    EXPECT_EQ(app.artist()->text(), QStringLiteral("Marsh Choir"));
    EXPECT_EQ(app.year()->text(), QStringLiteral("1998"));
    EXPECT_TRUE(app.album()->placeholderText().isEmpty());
    EXPECT_EQ(app.onPage<QSpinBox>(2, "formEdit", 0)->value(), 2) << "the medium of two tracks";
    EXPECT_EQ(app.onPage<QSpinBox>(2, "formEdit", 1)->value(), 2);
    EXPECT_EQ(titles(app), (QStringList{QStringLiteral("夜"), QStringLiteral("Rain")})) << "of the first medium";
    EXPECT_TRUE(hasCover(app));
}

TEST_F(LookupRoad, GnuDbServesWhatMusicBrainzDoesNotKnow)
{
    ServedRecord record;
    record.titles = {QStringLiteral("One")};
    services.on(hosts::gnuDb, gnudbQuery, page(gnudb::exactMatch(record)));
    services.on(hosts::gnuDb, gnudbRead, page(gnudb::recordAnswer(record)));
    answerItunes();
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    loadDisc(app);
    enterMetadata(app);
    EXPECT_EQ(app.album()->text(), QStringLiteral("Still Water"));
    EXPECT_EQ(titles(app), (QStringList{QStringLiteral("One"), QStringLiteral("Track 2")}))
        << "fewer titles than tracks; those of iTunes are not used";
    EXPECT_TRUE(hasCover(app));
}

TEST_F(LookupRoad, ADiscThatNobodyKnowsLeavesPlaceholders)
{
    for (const int language : {1, 2}) {
        WindowDriver app(language, {QStringLiteral("/dev/sr0")});
        loadDisc(app);
        enterMetadata(app);
        EXPECT_TRUE(app.album()->text().isEmpty());
        EXPECT_EQ(app.album()->placeholderText(),
                  language == 1 ? QStringLiteral("見つかりませんでした。手動で入力してください")
                                : QStringLiteral("Not found. Please enter it manually"));
        EXPECT_EQ(app.artist()->placeholderText(),
                  language == 1 ? QStringLiteral("アーティスト名を入力") : QStringLiteral("Enter artist name"));
        EXPECT_EQ(app.year()->placeholderText(), language == 1 ? QStringLiteral("年") : QStringLiteral("Year"));
        EXPECT_FALSE(hasCover(app));
    }
    EXPECT_TRUE(services.targets(hosts::iTunes).isEmpty()) << "without a name there is nothing to ask for";
}

TEST_F(LookupRoad, ASheetIsLookedUpInMusicBrainzAndITunesAlone)
{
    answerItunes();
    WindowDriver app(2);
    app.pickCue(makeCue());
    app.onPage<QSpinBox>(2, "formEdit", 0)->setValue(7);
    enterMetadata(app);
    EXPECT_EQ(app.album()->text(), QStringLiteral("Still Water"));
    EXPECT_EQ(titles(app), (QStringList{QStringLiteral("Reed"), QStringLiteral("Rain")}));
    EXPECT_EQ(app.onPage<QSpinBox>(2, "formEdit", 0)->value(), 7);
    EXPECT_TRUE(hasCover(app));
    EXPECT_TRUE(services.targets(hosts::gnuDb).isEmpty());
    EXPECT_FALSE(services.targets(hosts::musicBrainz).isEmpty());
}

TEST_F(LookupRoad, ASheetThatNobodyKnowsKeepsItsOwnTexts)
{
    WindowDriver app(2);
    app.pickCue(makeCue());
    enterMetadata(app);
    EXPECT_EQ(app.album()->text(), QStringLiteral("Test Album"));
    EXPECT_EQ(titles(app), (QStringList{QStringLiteral("Alpha"), QStringLiteral("Beta")}));
}

TEST_F(LookupRoad, ACoverThatTheLookupDoesNotFindIsTakenBack)
{
    const QString picturePath = writeFile(folder.path(), QStringLiteral("own.png"), picture(20, 20));
    WindowDriver app(2);
    app.pickCue(makeCue());
    enterMetadata(app);
    app.pickCover(picturePath);
    EXPECT_TRUE(hasCover(app));
    app.advanceTo(3);
    WindowDriver::click(app.back());
    ASSERT_TRUE(QTest::qWaitFor([&] { return app.next()->isEnabled(); }, 60000));
    EXPECT_FALSE(hasCover(app));
}

TEST_F(LookupRoad, NextIsOffWhileALookupRunsAndOnAgainOnThePageBefore)
{
    ServedAnswer silent;
    silent.silent = true;
    services.on(hosts::musicBrainz, "/", silent);
    WindowDriver app(2, {QStringLiteral("/dev/sr0")});
    loadDisc(app);
    while (app.step() < 2)
        WindowDriver::click(app.next());
    EXPECT_FALSE(app.next()->isEnabled());
    EXPECT_EQ(app.album()->placeholderText(), QStringLiteral("Searching..."));
    WindowDriver::click(app.back());
    EXPECT_TRUE(app.next()->isEnabled());
}
