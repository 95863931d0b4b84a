#include "ui/ProgramEnd.h"

#include "ui/AbruptEnd.h"
#include "ui/LookupChains.h"
#include "ui/MainWindow.h"

#include <QDeadlineTimer>
#include <QThreadPool>

void endProgram(std::unique_ptr<MainWindow> window)
{
    const QDeadlineTimer patience(endPatienceMilliseconds);
    stopLookups();
    // Asks the rips to stop at this same moment, and gives them as long.
    window.reset();
    QThreadPool* lookups = QThreadPool::globalInstance();
    // An answer of many megabytes that is being read can't be asked to stop.
    if (!lookups->waitForDone(static_cast<int>(patience.remainingTime())))
        abruptEnd().endProcess();
    lookups->waitForDone();
}
