#include "ui/ProgramEnd.h"

#include "ui/AbruptEnd.h"
#include "ui/Background.h"
#include "ui/LookupChains.h"
#include "ui/MainWindow.h"

#include <QDeadlineTimer>

void endProgram(std::unique_ptr<MainWindow> window)
{
    const QDeadlineTimer patience(endPatienceMilliseconds);
    stopLookups();
    // Asks the rips to stop at this same moment, and gives them as long.
    window.reset();
    // An answer of many megabytes that is being read can't be asked to stop.
    if (!waitForBackground(static_cast<int>(patience.remainingTime())))
        abruptEnd().endProcess();
    waitForBackground();
}
