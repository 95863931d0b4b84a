// The Metadata step filled by the lookup services, over real connections on this
// machine.

#include "ui/LookupStage.h"

#include "ui/Background.h"
#include "ui/LookupChains.h"

#include <QElapsedTimer>
#include <QSpinBox>

using namespace lookups;

namespace {

class LookupRoad : public LookupStage {};

} // namespace

TEST_F(LookupRoad, MusicBrainzFillsThePageAndTellsTheDiscOfASet)
{
    ServedRelease release;
    release.media = {{1, {QStringLiteral("夜"), QStringLiteral("Rain"), QStringLiteral("Third")}},
                     {2, {QStringLiteral("Other"), QStringLiteral("Two")}}};
    answerRelease(release);
    services.on(hosts::coverArtArchive, "/release/" + release.id.toUtf8() + "/front-500",
                image(picture(40, 30)));
    WindowDriver app(2, drive());
    loadDisc(app);
    enterMetadata(app);
    EXPECT_EQ(app.album()->text(), QStringLiteral("Still Water"));
    EXPECT_EQ(app.artist()->text(), QStringLiteral("Marsh Choir"));
    EXPECT_EQ(app.year()->text(), QStringLiteral("1998"));
    EXPECT_TRUE(app.album()->placeholderText().isEmpty());
    EXPECT_EQ(app.onPage<QSpinBox>(2, "formEdit", 0)->value(), 2) << "the medium of two tracks";
    EXPECT_EQ(app.onPage<QSpinBox>(2, "formEdit", 1)->value(), 2);
    EXPECT_EQ(titles(app), (QStringList{QStringLiteral("夜"), QStringLiteral("Rain")}))
        << "of the first medium";
    EXPECT_TRUE(hasCover(app));
}

TEST_F(LookupRoad, GnuDbServesWhatMusicBrainzDoesNotKnow)
{
    answerGnuDb({QStringLiteral("One")});
    answerItunes();
    WindowDriver app(2, drive());
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
        WindowDriver app(language, drive());
        loadDisc(app);
        enterMetadata(app);
        EXPECT_TRUE(app.album()->text().isEmpty());
        EXPECT_EQ(app.album()->placeholderText(),
                  language == 1 ? QStringLiteral("見つかりませんでした。手動で入力してください")
                                : QStringLiteral("Not found. Please enter it manually"));
        EXPECT_EQ(app.artist()->placeholderText(), language == 1 ? QStringLiteral("アーティスト名を入力")
                                                                 : QStringLiteral("Enter artist name"));
        EXPECT_EQ(app.year()->placeholderText(),
                  language == 1 ? QStringLiteral("年") : QStringLiteral("Year"));
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
    for (const int language : {1, 2}) {
        WindowDriver app(language);
        app.pickCue(makeCue());
        enterMetadata(app);
        EXPECT_EQ(app.album()->text(), QStringLiteral("Test Album"));
        EXPECT_EQ(app.artist()->text(), QStringLiteral("Test Artist"));
        EXPECT_EQ(app.year()->text(), QStringLiteral("1998"));
        EXPECT_EQ(titles(app), (QStringList{QStringLiteral("Alpha"), QStringLiteral("Beta")}));
        EXPECT_EQ(app.album()->placeholderText(),
                  language == 1 ? QStringLiteral("見つかりませんでした。手動で入力してください")
                                : QStringLiteral("Not found. Please enter it manually"));
    }
}

TEST_F(LookupRoad, ASheetFoundByMusicBrainzKeepsTheDiscNumbersOfTheUser)
{
    ServedRelease release;
    release.media = {{1, {QStringLiteral("Fog"), QString()}},
                     {2, {QStringLiteral("C"), QStringLiteral("D")}}};
    answerRelease(release);
    answerItunes();
    WindowDriver app(2);
    app.pickCue(makeCue());
    app.onPage<QSpinBox>(2, "formEdit", 0)->setValue(7);
    app.onPage<QSpinBox>(2, "formEdit", 1)->setValue(9);
    enterMetadata(app);
    EXPECT_EQ(app.album()->text(), QStringLiteral("Still Water"));
    EXPECT_EQ(app.artist()->text(), QStringLiteral("Marsh Choir"));
    EXPECT_EQ(titles(app), (QStringList{QStringLiteral("Fog"), QStringLiteral("Beta")}))
        << "an empty title is none";
    EXPECT_EQ(app.onPage<QSpinBox>(2, "formEdit", 0)->value(), 7);
    EXPECT_EQ(app.onPage<QSpinBox>(2, "formEdit", 1)->value(), 9);
}

TEST_F(LookupRoad, ADataTracksNoteGivesWayToATitleOfGnuDb)
{
    answerGnuDb({QStringLiteral("One"), QStringLiteral("Two"), QStringLiteral("Extra")});
    for (const int language : {1, 2}) {
        WindowDriver app(language, drive());
        loadDisc(app, {{0}, {150}, {300, true}});
        enterMetadata(app);
        EXPECT_EQ(titles(app),
                  (QStringList{QStringLiteral("One"), QStringLiteral("Two"), QStringLiteral("Extra")}));
    }
    answerGnuDb({QStringLiteral("One"), QStringLiteral("Two")});
    WindowDriver app(2, drive());
    loadDisc(app, {{0}, {150}, {300, true}});
    enterMetadata(app);
    EXPECT_EQ(titles(app).value(2), QStringLiteral("(data track - not audio, will not be ripped)"));
}

// GnuDB's titles are written as they are, MusicBrainz's only where there is one.
TEST_F(LookupRoad, AnEmptyTitleOfGnuDbIsWritten)
{
    answerGnuDb({QString(), QStringLiteral("Two")});
    WindowDriver app(2, drive());
    loadDisc(app);
    enterMetadata(app);
    EXPECT_EQ(titles(app), (QStringList{QString(), QStringLiteral("Two")}));
}

TEST_F(LookupRoad, AReleaseOfOneDiscLeavesTheDiscNumbersAlone)
{
    ServedRelease release;
    release.media = {{1, {QStringLiteral("A"), QStringLiteral("B")}}};
    answerRelease(release);
    WindowDriver app(2, drive());
    loadDisc(app);
    app.onPage<QSpinBox>(2, "formEdit", 0)->setValue(3);
    app.onPage<QSpinBox>(2, "formEdit", 1)->setValue(4);
    enterMetadata(app);
    EXPECT_EQ(app.onPage<QSpinBox>(2, "formEdit", 0)->value(), 3);
    EXPECT_EQ(app.onPage<QSpinBox>(2, "formEdit", 1)->value(), 4);
}

TEST_F(LookupRoad, OfTwoMediaOfTheSameLengthTheEarlierIsTaken)
{
    ServedRelease release;
    release.media = {{1, {QStringLiteral("A")}},
                     {2, {QStringLiteral("C"), QStringLiteral("D")}},
                     {3, {QStringLiteral("E"), QStringLiteral("F")}}};
    answerRelease(release);
    WindowDriver app(2, drive());
    loadDisc(app);
    enterMetadata(app);
    EXPECT_EQ(app.onPage<QSpinBox>(2, "formEdit", 0)->value(), 2);
    EXPECT_EQ(app.onPage<QSpinBox>(2, "formEdit", 1)->value(), 3);
    EXPECT_EQ(titles(app), (QStringList{QStringLiteral("A"), QStringLiteral("Track 2")}))
        << "of the first medium";
}

TEST_F(LookupRoad, AHitAfterAMissTakesThePlaceholdersOfTheMissAway)
{
    ServedRelease release;
    release.date.clear();
    services.onInTurn(hosts::musicBrainz, discQuery,
                      {errorPage(404), json(musicbrainz::discAnswer({musicbrainz::release(release)}))});
    WindowDriver app(2, drive());
    loadDisc(app);
    enterMetadata(app);
    ASSERT_EQ(app.year()->placeholderText(), QStringLiteral("Year"));
    app.advanceTo(3);
    WindowDriver::click(app.back());
    waitForLookup(app);
    EXPECT_EQ(app.album()->text(), QStringLiteral("Still Water"));
    EXPECT_TRUE(app.album()->placeholderText().isEmpty());
    EXPECT_TRUE(app.year()->text().isEmpty());
    EXPECT_TRUE(app.year()->placeholderText().isEmpty());
}

TEST_F(LookupRoad, AMissAfterAHitLeavesWhatWasTyped)
{
    services.onInTurn(
        hosts::musicBrainz, discQuery,
        {json(musicbrainz::discAnswer({musicbrainz::release(ServedRelease())})), errorPage(404)});
    WindowDriver app(2, drive());
    loadDisc(app);
    enterMetadata(app);
    EXPECT_EQ(app.album()->text(), QStringLiteral("Still Water"));
    app.album()->setText(QStringLiteral("By hand"));
    app.advanceTo(3);
    WindowDriver::click(app.back());
    waitForLookup(app);
    EXPECT_EQ(app.year()->placeholderText(), QStringLiteral("Year"));
    EXPECT_EQ(app.album()->text(), QStringLiteral("By hand"));
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
    waitForLookup(app);
    EXPECT_FALSE(hasCover(app));
    EXPECT_EQ(app.onPage<QLabel>(2, "artLabel")->text(), QStringLiteral("♪"));
}

TEST_F(LookupRoad, TheEndOfTheProgramLeavesNoLookupBehind)
{
    services.on(hosts::musicBrainz, "/", silence());
    WindowDriver app(2, drive());
    loadDisc(app);
    WindowDriver::click(app.next());
    WindowDriver::click(app.next());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !services.targets(hosts::musicBrainz).isEmpty(); }, 60000));
    QElapsedTimer time;
    time.start();
    stopLookups();
    waitForBackground();
    EXPECT_EQ(QThreadPool::globalInstance()->activeThreadCount(), 0);
    EXPECT_LT(time.elapsed(), 5000);
}
