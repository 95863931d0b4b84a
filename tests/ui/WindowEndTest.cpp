// How the window goes, and the process with it.

#include "ui/LookupStage.h"

#include "ui/Background.h"
#include "ui/LookupChains.h"
#include "ui/RunningRips.h"

#include <QApplication>
#include <QRadioButton>
#include <QTimer>

#include <algorithm>
#include <functional>

namespace {

class WindowEnd : public LookupStage {
protected:
    /// To the RIP step, with WAV files as the choice.
    void prepareRip(WindowDriver& app)
    {
        app.outputPath()->setText(folder.path());
        app.advanceTo(1);
        app.onPage<QRadioButton>(1, "fmtRadio", 1)->click();
        app.advanceTo(3);
        ASSERT_EQ(app.step(), 3);
    }

    /// Runs the program's event loop, in which something happens.
    static int exitCodeAfter(WindowDriver& app, const std::function<void()>& happens)
    {
        constexpr int neverEnded = 99;
        QTimer tooLate;
        QObject::connect(&tooLate, &QTimer::timeout, [] { QCoreApplication::exit(neverEnded); });
        tooLate.start(20000);
        QGuiApplication::setQuitOnLastWindowClosed(true); // as it is in the program
        QTimer::singleShot(0, &app.window(), happens);
        const int exitCode = QApplication::exec();
        QGuiApplication::setQuitOnLastWindowClosed(false);
        return exitCode;
    }
};

} // namespace

TEST_F(WindowEnd, NoTimeIsLostOnTheRipsOwnLookup)
{
    services.onInTurn(hosts::musicBrainz, lookups::discQuery, {errorPage(404), silence()});
    WindowDriver app(2, drive());
    loadDisc(app);
    prepareRip(app);
    const auto asked = [this] {
        const QList<QByteArray> targets = services.targets(hosts::musicBrainz);
        return std::count_if(targets.cbegin(), targets.cend(),
                             [](const QByteArray& target) { return target.startsWith(lookups::discQuery); });
    };
    ASSERT_EQ(asked(), 1) << "by the Metadata step";
    WindowDriver::click(app.rip());
    ASSERT_TRUE(QTest::qWaitFor([&] { return asked() == 2; }, 60000));
    stopLookups();
    waitForBackground();
    EXPECT_LT(app.destroyWindow(), 2000);
}

TEST_F(WindowEnd, FinishClosesTheWindowAndSoEndsTheProcess)
{
    WindowDriver app(2);
    app.pickCue(makeCue());
    prepareRip(app);
    ASSERT_FALSE(app.runRip().isEmpty());
    WindowDriver::click(app.next());
    ASSERT_EQ(app.next()->text(), QStringLiteral("Finish"));

    EXPECT_EQ(exitCodeAfter(app, [&app] { WindowDriver::click(app.next()); }), 0);
    EXPECT_FALSE(app.window().isVisible());
}

TEST_F(WindowEnd, ARipThatEndsAtThatMomentDoesNotKeepTheProgram)
{
    WindowDriver app(2);
    const auto closeAtTheEndOfARip = [&app] {
        app.window().close();
        Q_EMIT app.window().findChild<RunningRips*>()->finished();
    };
    EXPECT_EQ(exitCodeAfter(app, closeAtTheEndOfARip), 0);
}
