#include "ui/RunningRips.h"

#include "rip/RipWorker.h"
#include "ui/AbruptEnd.h"
#include "ui/RipRelay.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QPointer>
#include <QThread>

RunningRips::RunningRips(QObject* parent) : QObject(parent) {}

RunningRips::~RunningRips()
{
    for (const RunningRip& rip : rips) {
        rip.relay->close();
        if (!rip.ended)
            rip.worker->requestStop();
        rip.thread->quit();
    }
    QDeadlineTimer patience(endPatienceMilliseconds);
    for (const RunningRip& rip : rips) {
        // An encoder in the middle of a long track, or a drive that hangs, cannot
        // be asked to stop. The process ends under it, before anything that it
        // uses is taken away.
        if (!rip.thread->wait(patience)) {
            QFile::remove(rip.worker->unfinishedFile());
            abruptEnd().endProcess();
            rip.thread->wait();
        }
        if (!rip.ended)
            delete rip.worker;
    }
}

void RunningRips::start(std::unique_ptr<RipWorker> worker)
{
    const RunningRip rip{worker.release(), new QThread(this), new RipRelay(this)};
    rip.worker->moveToThread(rip.thread);

    rip.relay->attach(rip.worker);
    connect(rip.relay, &RipRelay::logLine, this, &RunningRips::logLine);
    connect(rip.relay, &RipRelay::statusText, this, &RunningRips::statusText);
    connect(rip.relay, &RipRelay::sectorsDone, this, &RunningRips::sectorsDone);
    connect(rip.relay, &RipRelay::trackStarted, this, &RunningRips::trackStarted);
    connect(rip.relay, &RipRelay::trackDone, this, &RunningRips::trackDone);
    connect(rip.relay, &RipRelay::finished, this, [this, thread = rip.thread] { endRip(thread); });
    connect(rip.thread, &QThread::finished, this, [this, thread = rip.thread] { forgetRip(thread); });
    connect(rip.thread, &QThread::started, rip.worker, &RipWorker::run);
    connect(rip.thread, &QThread::finished, rip.thread, &QObject::deleteLater);
    rips.push_back(rip);
    rip.thread->start();
}

void RunningRips::endRip(QThread* thread)
{
    const QPointer<RunningRips> self(this);
    Q_EMIT finished();
    if (!self)
        return;
    for (RunningRip& rip : rips) {
        if (rip.thread != thread)
            continue;
        rip.ended = true;
        rip.worker->deleteLater();
        rip.thread->quit();
    }
}

void RunningRips::forgetRip(QThread* thread)
{
    std::erase_if(rips, [thread](const RunningRip& rip) {
        if (rip.thread == thread)
            rip.relay->deleteLater();
        return rip.thread == thread;
    });
}
