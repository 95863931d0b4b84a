// Lookups that take their time, while the user goes on.

#include "ui/Background.h"
#include "ui/LookupStage.h"

#include "support/FakeHttpTransport.h"

#include <QElapsedTimer>

#include <semaphore>

using namespace lookups;

namespace {

class LookupTiming : public LookupStage {
protected:
    /// Sends every request on to the services, and holds back the first answer
    /// until it is let go.
    HttpAnswer held(const HttpRequest& request)
    {
        const bool isFirst = !firstSent.exchange(true);
        HttpAnswer answer = services.transport().get(request);
        if (isFirst) {
            firstArrived = true;
            gate.acquire();
        }
        return answer;
    }

    void TearDown() override
    {
        gate.release();
        LookupStage::TearDown();
    }

    static ServedAnswer releaseNamed(const QString& title)
    {
        ServedRelease release;
        release.title = title;
        release.id.clear();
        release.media = {{1, {title + QStringLiteral(" one"), title + QStringLiteral(" two")}}};
        return json(musicbrainz::discAnswer({musicbrainz::release(release)}));
    }

    void clickTo(WindowDriver& app, int step)
    {
        while (app.step() < step)
            WindowDriver::click(app.next());
        while (app.step() > step)
            WindowDriver::click(app.back());
        ASSERT_EQ(app.step(), step);
    }

    void waitForHeldAnswer()
    {
        ASSERT_TRUE(QTest::qWaitFor([this] { return firstArrived.load(); }, 60000));
    }

    std::atomic<bool> firstSent = false;
    std::atomic<bool> firstArrived = false;
    std::counting_semaphore<8> gate{0};
    FakeHttpTransport holding{[this](const HttpRequest& request) { return held(request); }};
    HttpTransportOverride inPlace{holding};
};

} // namespace

TEST_F(LookupTiming, NextIsOffWhileALookupRunsAndOnAgainOnThePageBefore)
{
    for (const int language : {1, 2}) {
        firstSent = false;
        WindowDriver app(language, drive());
        loadDisc(app);
        clickTo(app, 2);
        EXPECT_FALSE(app.next()->isEnabled());
        EXPECT_TRUE(app.back()->isEnabled());
        EXPECT_EQ(app.album()->placeholderText(),
                  language == 1 ? QStringLiteral("検索中...") : QStringLiteral("Searching..."));
        WindowDriver::click(app.next());
        EXPECT_EQ(app.step(), 2);
        clickTo(app, 1);
        EXPECT_TRUE(app.next()->isEnabled());
        gate.release();
        waitForBackground();
    }
}

TEST_F(LookupTiming, AnOlderLookupThatEndsLaterHasTheLastWord)
{
    services.onInTurn(hosts::musicBrainz, discQuery,
                      {releaseNamed(QStringLiteral("Older")), releaseNamed(QStringLiteral("Newer"))});
    WindowDriver app(2, drive());
    loadDisc(app);
    clickTo(app, 2);
    waitForHeldAnswer();
    clickTo(app, 1);
    clickTo(app, 2);
    waitForLookup(app);
    EXPECT_EQ(app.album()->text(), QStringLiteral("Newer"));
    EXPECT_EQ(titles(app).value(0), QStringLiteral("Newer one"));
    gate.release();
    EXPECT_TRUE(QTest::qWaitFor([&] { return app.album()->text() == QStringLiteral("Older"); }, 60000));
    EXPECT_EQ(titles(app).value(0), QStringLiteral("Older one"));
    EXPECT_TRUE(app.next()->isEnabled());
}

TEST_F(LookupTiming, ALookupWritesToThePageWhereverTheUserIs)
{
    services.on(hosts::musicBrainz, discQuery, releaseNamed(QStringLiteral("Late")));
    WindowDriver app(2, drive());
    loadDisc(app);
    clickTo(app, 2);
    clickTo(app, 0);
    gate.release();
    EXPECT_TRUE(QTest::qWaitFor([&] { return app.album()->text() == QStringLiteral("Late"); }, 60000));
    EXPECT_EQ(app.step(), 0);
    EXPECT_EQ(titles(app), (QStringList{QStringLiteral("Late one"), QStringLiteral("Late two")}));
}

// A second entry to the step starts a second lookup; the user goes on with the
// answer of one, and the other comes in on the RIP step.
TEST_F(LookupTiming, ALookupThatEndsOnTheRipStepLeavesNextOff)
{
    services.onInTurn(hosts::musicBrainz, discQuery,
                      {releaseNamed(QStringLiteral("Older")), releaseNamed(QStringLiteral("Newer"))});
    WindowDriver app(2, drive());
    loadDisc(app);
    clickTo(app, 2);
    waitForHeldAnswer();
    clickTo(app, 1);
    clickTo(app, 2);
    waitForLookup(app);
    clickTo(app, 3);
    ASSERT_FALSE(app.next()->isEnabled());
    gate.release();
    ASSERT_TRUE(QTest::qWaitFor([&] { return app.album()->text() == QStringLiteral("Older"); }, 60000));
    EXPECT_FALSE(app.next()->isEnabled()) << "only the end of a rip does that here";
    ASSERT_FALSE(app.runRip().isEmpty());
    EXPECT_TRUE(app.next()->isEnabled());
}

TEST_F(LookupTiming, ALookupThatEndsAfterAResetFindsNoRows)
{
    services.on(hosts::musicBrainz, discQuery, releaseNamed(QStringLiteral("Late")));
    WindowDriver app(2, drive());
    loadDisc(app);
    clickTo(app, 2);
    clickTo(app, 0);
    WindowDriver::click(app.reset());
    EXPECT_TRUE(app.album()->text().isEmpty());
    gate.release();
    EXPECT_TRUE(QTest::qWaitFor([&] { return app.album()->text() == QStringLiteral("Late"); }, 60000));
    EXPECT_EQ(app.tracks()->rowCount(), 0);
    EXPECT_TRUE(app.next()->isEnabled());
}

TEST_F(LookupTiming, ADiscsLookupThatEndsOverASheetFillsTheRowsThatAreThere)
{
    services.onInTurn(hosts::musicBrainz, discQuery, {releaseNamed(QStringLiteral("Disc")), errorPage(404)});
    ImageDescription image;
    image.tracks = {{0, QStringLiteral("Alone")}};
    const QString cue = writeImage(folder.path(), image, makeAudio(60, 1));
    WindowDriver app(2, drive());
    loadDisc(app);
    clickTo(app, 2);
    waitForHeldAnswer();
    clickTo(app, 0);
    app.pickCue(cue);
    EXPECT_EQ(titles(app), QStringList{QStringLiteral("Alone")});
    gate.release();
    EXPECT_TRUE(QTest::qWaitFor([&] { return app.album()->text() == QStringLiteral("Disc"); }, 60000));
    EXPECT_EQ(titles(app), QStringList{QStringLiteral("Disc one")});
}

TEST_F(LookupTiming, TheWindowMayGoWhileALookupRuns)
{
    services.on(hosts::musicBrainz, discQuery, releaseNamed(QStringLiteral("Late")));
    WindowDriver app(2, drive());
    loadDisc(app);
    clickTo(app, 2);
    waitForHeldAnswer();
    QElapsedTimer time;
    time.start();
    app.destroyWindow();
    EXPECT_LT(time.elapsed(), 5000);
    gate.release();
    waitForBackground();
    QTest::qWait(20);
}

TEST_F(LookupTiming, TheWindowMayGoInTheMomentInWhichALookupEnds)
{
    services.on(hosts::musicBrainz, discQuery, releaseNamed(QStringLiteral("Late")));
    WindowDriver app(2, drive());
    loadDisc(app);
    clickTo(app, 2);
    waitForHeldAnswer();
    gate.release();
    waitForBackground(); // its end waits in the queue of events
    app.destroyWindow();
    QTest::qWait(20);
}

TEST_F(LookupTiming, SeveralLookupsUnderWayGoWithTheirWindow)
{
    services.on(hosts::musicBrainz, "/", silence());
    firstSent = true;
    WindowDriver app(2, drive());
    loadDisc(app);
    for (int round = 0; round < 4; ++round) {
        clickTo(app, 2);
        clickTo(app, 1);
    }
    app.destroyWindow();
    QElapsedTimer time;
    time.start();
    services.transport().stop();
    waitForBackground();
    EXPECT_LT(time.elapsed(), 5000) << "the end of the program waits for them";
}
