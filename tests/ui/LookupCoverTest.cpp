// Where the covers of the Metadata step come from, and what the debug log says
// of the lookups on the way.

#include "ui/LookupStage.h"

#include "support/LogCapture.h"

using namespace lookups;

namespace {

const QString discogsSkipped = QStringLiteral("CoverArt[Discogs]: token not set, skip");

class LookupCover : public LookupStage {
protected:
    LookupCover() { release.media = {{1, {QStringLiteral("A"), QStringLiteral("B")}}}; }

    QByteArray front() const { return "/release/" + release.id.toUtf8() + "/front-500"; }

    /// The lines of the chain and of a source left out, of a disc in the drive.
    QStringList linesOfDisc(WindowDriver& app)
    {
        const LogCapture log;
        loadDisc(app);
        enterMetadata(app);
        return chainLines(log.debugLines());
    }
    QStringList linesOfSheet(WindowDriver& app)
    {
        app.pickCue(makeCue());
        const LogCapture log;
        enterMetadata(app);
        return chainLines(log.debugLines());
    }

    static QStringList chainLines(const QStringList& all)
    {
        QStringList found;
        for (const QString& line : all) {
            if (line.startsWith(QStringLiteral("[Meta")) || line == discogsSkipped)
                found << line;
        }
        return found;
    }

    ServedRelease release;
};

} // namespace

TEST_F(LookupCover, OfAReleaseIsTheArchivesFrontPicture)
{
    answerRelease(release);
    answerItunes();
    services.on(hosts::coverArtArchive, front(), image(picture(40, 20)));
    WindowDriver app(2, drive());
    EXPECT_EQ(linesOfDisc(app), QStringList{QStringLiteral("[Meta] MusicBrainz: Still Water")});
    EXPECT_DOUBLE_EQ(coverRatio(app), 2.0);
    EXPECT_TRUE(services.targets(hosts::iTunes).isEmpty());
    EXPECT_TRUE(services.targets(hosts::gnuDb).isEmpty());
}

TEST_F(LookupCover, OfAReleaseWithoutFrontPictureIsTheStores)
{
    answerRelease(release);
    answerItunes();
    services.on(hosts::images, "/art/600x600bb.jpg", image(picture(20, 40)));
    ServedAnswer hangsUp;
    hangsUp.dropped = true;
    ServedAnswer withPicture = image(picture(40, 20)); // an error that shows a picture is an error
    withPicture.status = 404;
    for (const ServedAnswer& archive :
         {errorPage(404), errorPage(500), image("no picture"), page(QByteArray()), hangsUp, withPicture}) {
        services.on(hosts::coverArtArchive, front(), archive);
        WindowDriver app(2, drive());
        linesOfDisc(app);
        EXPECT_DOUBLE_EQ(coverRatio(app), 0.5);
        EXPECT_EQ(services.targets(hosts::iTunes).value(0),
                  "/search?term=Marsh+Choir+Still+Water&entity=album&limit=10&country=JP");
        EXPECT_EQ(titles(app).value(0), QStringLiteral("A"));
    }
}

TEST_F(LookupCover, OfAReleaseWithoutIdIsNotSoughtAtAll)
{
    release.id.clear();
    answerRelease(release);
    answerItunes();
    WindowDriver app(2, drive());
    linesOfDisc(app);
    EXPECT_EQ(app.album()->text(), QStringLiteral("Still Water"));
    EXPECT_FALSE(hasCover(app));
    EXPECT_TRUE(services.targets(hosts::iTunes).isEmpty());
    EXPECT_TRUE(services.targets(hosts::coverArtArchive).isEmpty());
}

TEST_F(LookupCover, OfAGnuDbRecordIsTheStores)
{
    answerGnuDb({QStringLiteral("One"), QStringLiteral("Two")});
    answerItunes();
    WindowDriver app(2, drive());
    EXPECT_EQ(linesOfDisc(app), (QStringList{QStringLiteral("[Meta] MusicBrainz: "),
                                             QStringLiteral("[Meta] GnuDB: Still Water")}));
    EXPECT_DOUBLE_EQ(coverRatio(app), 1.0);
    EXPECT_EQ(services.targets(hosts::images), QList<QByteArray>{"/art/600x600bb.jpg"});
}

// Discogs asks for a token that the window has none of.
TEST_F(LookupCover, OfAGnuDbRecordThatTheStoreLacksIsLookedForAtDiscogs)
{
    answerGnuDb({QStringLiteral("One"), QStringLiteral("Two")});
    const QStringList expected{QStringLiteral("[Meta] MusicBrainz: "),
                               QStringLiteral("[Meta] GnuDB: Still Water"), discogsSkipped};
    {
        WindowDriver app(2, drive());
        EXPECT_EQ(linesOfDisc(app), expected);
        EXPECT_FALSE(hasCover(app));
    }
    answerItunes();
    services.on(hosts::images, "/", errorPage(404));
    WindowDriver app(2, drive());
    EXPECT_EQ(linesOfDisc(app), expected) << "an album without its picture leads on as well";
    EXPECT_FALSE(hasCover(app));
    EXPECT_EQ(app.album()->text(), QStringLiteral("Still Water"));
    EXPECT_TRUE(services.targets(hosts::discogs).isEmpty());
}

TEST_F(LookupCover, ADiscThatNobodyNamesEndsTheChain)
{
    answerItunes();
    WindowDriver app(2, drive());
    EXPECT_EQ(linesOfDisc(app),
              (QStringList{QStringLiteral("[Meta] MusicBrainz: "), QStringLiteral("[Meta] GnuDB: "),
                           QStringLiteral("[Meta] GnuDB miss -> iTunes fallback"),
                           QStringLiteral("[Meta] no artist/album info, skip iTunes")}));
    EXPECT_TRUE(services.targets(hosts::iTunes).isEmpty());
    EXPECT_FALSE(hasCover(app));
}

TEST_F(LookupCover, OfASheetsReleaseIsTheArchives)
{
    answerRelease(release);
    services.on(hosts::coverArtArchive, front(), image(picture(40, 20)));
    WindowDriver app(2);
    EXPECT_EQ(linesOfSheet(app), QStringList{QStringLiteral("[Meta/CUE] MusicBrainz: Still Water")});
    EXPECT_DOUBLE_EQ(coverRatio(app), 2.0);
}

TEST_F(LookupCover, OfASheetThatTheStoreKnowsIsTheStores)
{
    answerItunes();
    WindowDriver app(2);
    EXPECT_EQ(linesOfSheet(app), (QStringList{QStringLiteral("[Meta/CUE] MusicBrainz: "),
                                              QStringLiteral("[Meta/CUE] MusicBrainz miss → iTunes fallback"),
                                              QStringLiteral("[Meta/CUE] iTunes: Still Water tracks: 2")}));
    EXPECT_DOUBLE_EQ(coverRatio(app), 1.0);
}

TEST_F(LookupCover, ASheetsAlbumWithoutAUsablePictureGetsNoFurtherTry)
{
    answerItunes();
    services.on(hosts::images, "/", image("no picture"));
    WindowDriver app(2);
    EXPECT_FALSE(linesOfSheet(app).contains(discogsSkipped));
    EXPECT_EQ(app.album()->text(), QStringLiteral("Still Water"));
    EXPECT_FALSE(hasCover(app));
}

TEST_F(LookupCover, ASheetThatTheStoreLacksIsLookedForAtDiscogs)
{
    WindowDriver app(2);
    EXPECT_EQ(linesOfSheet(app),
              (QStringList{QStringLiteral("[Meta/CUE] MusicBrainz: "),
                           QStringLiteral("[Meta/CUE] MusicBrainz miss → iTunes fallback"),
                           QStringLiteral("[Meta/CUE] iTunes:  tracks: 0"), discogsSkipped}));
    EXPECT_FALSE(hasCover(app));
}

TEST_F(LookupCover, IsSoughtWhenASheetIsPicked)
{
    services.on(hosts::musicBrainz, textQuery, json(musicbrainz::searchAnswer({release.id})));
    services.on(hosts::coverArtArchive, front(), image(picture(40, 20)));
    WindowDriver app(2);
    app.pickCue(makeCue());
    EXPECT_DOUBLE_EQ(coverRatio(app), 2.0) << "before the Metadata step is entered";
    ASSERT_FALSE(services.targets(hosts::musicBrainz).isEmpty());
    EXPECT_EQ(services.targets(hosts::musicBrainz).first(),
              "/ws/2/release/"
              "?query=artist%3A%22Test%20Artist%22%20AND%20release%3A%22Test%20Album%22&fmt=json&limit=5");
    enterMetadata(app);
    EXPECT_FALSE(hasCover(app)) << "the lookup of the step replaces it, with nothing too";
}

TEST_F(LookupCover, OfAPickedSheetFallsToTheStore)
{
    answerItunes();
    WindowDriver app(2);
    app.pickCue(makeCue());
    EXPECT_DOUBLE_EQ(coverRatio(app), 1.0);
}

TEST_F(LookupCover, OfAPickedSheetThatIsNowhereLeavesTheNote)
{
    WindowDriver app(2);
    app.pickCue(makeCue());
    EXPECT_FALSE(hasCover(app));
    EXPECT_EQ(app.onPage<QLabel>(2, "artLabel")->text(), QStringLiteral("♪"));
    EXPECT_EQ(app.album()->text(), QStringLiteral("Test Album"));
    EXPECT_EQ(app.tracks()->rowCount(), 2);
}
