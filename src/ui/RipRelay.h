#pragma once

#include "disc/DiscModel.h"
#include "rip/RipTypes.h"

#include <QList>
#include <QObject>
#include <QTimer>

#include <memory>
#include <variant>
#include <vector>

class RipWorker;

/// Carries what a worker reports to the GUI thread, in order and complete, at
/// any speed: what comes at once is delivered at once, and what follows within a few
/// milliseconds together; delivery gives the event loop its turn, and a worker that
/// runs far ahead is made to wait.
///
/// Lives in the GUI thread, and its signals are emitted there. No lock is held
/// while they are, so that a slot may run an event loop of its own.
class RipRelay : public QObject {
    Q_OBJECT
public:
    /// Events that may wait before the worker is held: a whole disc, which may come
    /// in while the GUI thread works on something else. 99:59:74 is the last address
    /// that a disc can name; the rest is for what is said of its tracks.
    static constexpr std::size_t waitingLimit = 100 * 60 * SECTORS_PER_SECOND + 10'000;
    /// A signal for each of them would cost more than what is done with it.
    static constexpr qsizetype sectorsAtOnce = 64;
    /// How long one turn of delivery may last before the event loop gets its own.
    static constexpr int turnMilliseconds = 10;
    /// From one turn to the next. Waking a thread costs more than a sector.
    static constexpr int pauseMilliseconds = 5;

    explicit RipRelay(QObject* parent = nullptr);
    ~RipRelay() override;

    /// Called once, before the worker runs.
    void attach(RipWorker* worker);
    /// Drops everything from now on and frees a worker that waits. For good.
    void close();

Q_SIGNALS:
    /// As many in a row as there were, up to sectorsAtOnce.
    void sectorsDone(const QList<SectorResult>& sectors);
    void trackStarted(int trackNumber, int totalTracks, const QString& title);
    void trackDone(const RipResult& result);
    void logLine(const QString& line);
    void statusText(const QString& text);
    void finished();

private:
    struct TrackStart {
        int number;
        int total;
        QString title;
    };
    struct LogLine {
        QString text;
    };
    struct StatusText {
        QString text;
    };
    struct Finish {};
    using Sectors = QList<SectorResult>; ///< that nothing else came between
    using Event = std::variant<Sectors, TrackStart, RipResult, LogLine, StatusText, Finish>;
    class Channel;

    Q_INVOKABLE void deliverTurn();
    void onPauseOver();
    bool fetchBatch();
    void deliver(const Event& event);

    std::shared_ptr<Channel> channel; ///< shared with the worker's connections, which may outlive this
    std::vector<Event> batch;         ///< taken from the channel, delivered up to `next`
    std::size_t next = 0;
    QTimer pause; ///< runs from the begin of a turn; without it the next event wakes this
};
