// How the program ends while lookups are under way.

#include "ui/LookupStage.h"

#include "support/FakeHttpTransport.h"
#include "ui/HeldRip.h"
#include "ui/ProgramEnd.h"
#include "ui/RecordedEnd.h"

#include <QElapsedTimer>

using namespace lookups;

namespace {

class ProgramEnd : public LookupStage {
protected:
    /// Closes the window and ends the program.
    /// @return how long that took, in milliseconds
    static qint64 end(WindowDriver& app)
    {
        QElapsedTimer time;
        time.start();
        app.window().close();
        endProgram(app.takeWindow());
        return time.elapsed();
    }

    static void startLookup(WindowDriver& app)
    {
        loadDisc(app);
        while (app.step() < 2)
            WindowDriver::click(app.next());
    }

    static constexpr qint64 mostMilliseconds = 5000;
};

} // namespace

TEST_F(ProgramEnd, ALookupAmongEndlessCandidatesEndsInGoodOrder)
{
    QByteArray list = "211 Found inexact matches, list follows\r\n";
    for (int i = 0; i < 200'001; ++i)
        list += "rock 0b015903 Choir / Album\r\n";
    services.on(hosts::gnuDb, gnudbQuery, page(list + ".\r\n"));
    services.on(hosts::gnuDb, gnudbRead, page("210 OK\r\nTTITLE0=One\r\n.\r\n"));
    RecordedEnd end([] {});
    WindowDriver app(2, drive());
    const AbruptEndOverride inPlace(end);
    startLookup(app);
    ASSERT_TRUE(QTest::qWaitFor([this] { return services.targets(hosts::gnuDb).size() > 3; }, 60000));
    EXPECT_LT(ProgramEnd::end(app), mostMilliseconds);
    EXPECT_EQ(end.calls, 0);
    EXPECT_EQ(QThreadPool::globalInstance()->activeThreadCount(), 0);
}

// As it would among 60 MB of JSON.
TEST_F(ProgramEnd, ALookupThatCannotBeStoppedIsLeftBehind)
{
    Gate busy;
    FakeHttpTransport deaf([&busy](const HttpRequest&) {
        busy.pass();
        return HttpAnswer();
    });
    const HttpTransportOverride deafInPlace(deaf);
    RecordedEnd end([&busy] { busy.open(); });
    WindowDriver app(2, drive());
    const AbruptEndOverride inPlace(end);
    startLookup(app);
    ASSERT_TRUE(QTest::qWaitFor([&busy] { return busy.isHolding(); }, 60000));
    const qint64 taken = ProgramEnd::end(app);
    EXPECT_EQ(end.calls, 1);
    EXPECT_LT(taken, mostMilliseconds);
    EXPECT_GE(taken, 3500) << "it was given its time";
}

// The rip takes all the time that there is; none is left for the lookup.
TEST_F(ProgramEnd, RipsAndLookupsHaveTheirTimeTogether)
{
    HeldStart rip;
    Gate lookup;
    FakeHttpTransport deaf([&lookup](const HttpRequest&) {
        lookup.pass();
        return HttpAnswer();
    });
    const HttpTransportOverride deafInPlace(deaf);
    qint64 ripLeft = -1;
    QElapsedTimer time;
    RecordedEnd end([&] {
        if (ripLeft < 0) {
            ripLeft = time.elapsed();
            rip.gate.open();
        } else {
            lookup.open();
        }
    });
    WindowDriver app(2, drive());
    const AbruptEndOverride inPlace(end);
    app.outputPath()->setText(folder.path());
    startLookup(app);
    ASSERT_TRUE(QTest::qWaitFor([&lookup] { return lookup.isHolding(); }, 60000));
    WindowDriver::click(app.back());
    WindowDriver::click(app.next()); // a second lookup, which ends at once
    waitForLookup(app);
    WindowDriver::click(app.next());
    WindowDriver::click(app.rip());
    ASSERT_TRUE(QTest::qWaitFor([&rip] { return rip.gate.isHolding(); }, 60000));
    time.start();
    const qint64 taken = ProgramEnd::end(app);
    EXPECT_EQ(end.calls, 2);
    EXPECT_LT(taken - ripLeft, 500) << "no second term";
    EXPECT_LT(taken, mostMilliseconds);
}
