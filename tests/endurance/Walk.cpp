#include "endurance/Walk.h"

#include "support/DiscMaker.h"
#include "support/LogCapture.h"
#include "support/OfflineServices.h"
#include "ui/Background.h"

#include <QApplication>
#include <QSettings>
#include <QThread>
#include <QTimer>

#include <array>

Walk::Walk(const WalkStage& walkStage, quint32 seed) : stage(walkStage), random(seed) {}

QStringList Walk::take(int steps)
{
    QSettings().clear();
    const LogCapture quiet;
    const auto offline = chance(50) ? std::make_unique<OfflineServices>() : nullptr;
    left = steps;
    while (left > 0 && wrong.isEmpty()) {
        openWindow();
        QTimer::singleShot(0, &app->window(), [this] { step(); });
        QApplication::exec();
        closeWindow();
    }
    waitForBackground();
    QDir(stage.output()).removeRecursively();
    if (!wrong.isEmpty())
        wrong << QStringLiteral("after: ") + done.join(QStringLiteral(" | "));
    return wrong;
}

void Walk::openWindow()
{
    pace.restart(oneOf(std::array{1, 1, 1, 5, 200}), oneOf(std::array{0, 40, 150, 150}));
    app = std::make_unique<WindowDriver>(1 + below(2), chance(80) ? QStringList{QStringLiteral("/dev/sr0")}
                                                                  : QStringList());
    QGuiApplication::setQuitOnLastWindowClosed(true); // as it is in the program
    insertDisc();
    watch = std::make_unique<WindowWatch>(*app, pace);
    app->outputPath()->setText(stage.output());
    app->window().activateWindow();
    heading = patience = 0;
    ++windowCount;
    done << QStringLiteral("window %1").arg(windowCount);
}

void Walk::insertDisc()
{
    DriveShelf& shelf = app->shelf();
    shelf.audio = makeAudio(100, 1);
    shelf.leadOutLba = 300;
    shelf.tracks = {{0}, {100}, {200, chance(20)}};
    shelf.c2Available = chance(50);
    shelf.mechanism.seed = random();
    if (chance(50))
        shelf.mechanism.faults = {SectorFault::flaky(20, 24, 0.5), SectorFault::sticky(150, 151)};
    shelf.onClock = [this, own = QThread::currentThread()] {
        if (QThread::currentThread() != own)
            pace.reading();
    };
}

void Walk::closeWindow()
{
    ripCount += watch->ripsSeen();
    watch.reset();
    pace.release();
    app.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    if (pace.runsNow() != 0)
        wrong << QStringLiteral("a rip outlives its window");
}

int Walk::pauseMilliseconds()
{
    constexpr int metadataStep = 2;
    const bool searching = app->step() == metadataStep && !app->next()->isEnabled();
    if (searching && chance(60))
        return 30; // as a user would wait for it
    if (chance(70))
        return 0;
    return chance(80) ? 1 + below(5) : 20;
}

void Walk::step()
{
    if (left == 0 || !wrong.isEmpty())
        app->window().close();
    if (!app->window().isVisible()) {
        expectTheEnd();
        return;
    }
    --left;
    pace.step();
    watch->observe();
    // Set in front of what may run an event loop of its own.
    QTimer::singleShot(pauseMilliseconds(), &app->window(), [this] { step(); });
    act();
    look();
}

void Walk::look()
{
    while (done.size() > 40)
        done.removeFirst();
    if (!app->window().isVisible())
        expectTheEnd();
    else if (wrong.isEmpty())
        wrong = watch->complaints();
}

// Without a window nobody can do anything about a program that goes on.
void Walk::expectTheEnd()
{
    constexpr int patienceMilliseconds = 20'000;
    QTimer::singleShot(patienceMilliseconds, &app->window(), [this] {
        wrong << QStringLiteral("the program goes on without its window");
        QCoreApplication::exit();
    });
}
