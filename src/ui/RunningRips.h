#pragma once

#include "disc/DiscModel.h"
#include "rip/RipTypes.h"

#include <QObject>

#include <memory>
#include <vector>

class QThread;
class RipRelay;
class RipWorker;

/// The rips under way, each on a thread of its own. What they report comes out
/// here, on the GUI thread, whichever of them it is.
///
/// What a rip uses, its drive above all, has to outlive this object.
class RunningRips : public QObject {
    Q_OBJECT
public:
    explicit RunningRips(QObject* parent = nullptr);
    /// Stops the rips that run and waits for them: under one that does not stop in
    /// time, the process ends.
    ~RunningRips() override;

    /// Runs a configured worker.
    void start(std::unique_ptr<RipWorker> worker);

Q_SIGNALS:
    void sectorsDone(const QList<SectorResult>& sectors);
    void trackStarted(int trackNumber, int totalTracks, const QString& title);
    void trackDone(const RipResult& result);
    void logLine(const QString& line);
    void statusText(const QString& text);
    /// A slot may run an event loop, and this may go in it.
    void finished();

private:
    struct RunningRip {
        RipWorker* worker;
        QThread* thread;
        RipRelay* relay;
        bool ended = false; ///< the worker deletes itself, and the relay has gone quiet
    };

    void endRip(QThread* thread);
    void forgetRip(QThread* thread);

    std::vector<RunningRip> rips;
};
