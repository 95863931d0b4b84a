#include "ui/RipRelay.h"

#include "rip/RipWorker.h"

#include <QElapsedTimer>
#include <QPointer>

#include <condition_variable>
#include <mutex>
#include <utility>

/// The part that both threads touch.
class RipRelay::Channel {
public:
    explicit Channel(RipRelay* target) : relay(target) {}

    /// On the worker's thread, both.
    void push(Event event)
    {
        const auto lock = lockWithRoom();
        if (closed)
            return;
        waiting.push_back(std::move(event));
        ++waitingCount;
        wakeLocked();
    }
    void push(const SectorResult& sector)
    {
        const auto lock = lockWithRoom();
        if (closed)
            return;
        auto* sectors = waiting.empty() ? nullptr : std::get_if<Sectors>(&waiting.back());
        if (!sectors || sectors->size() == sectorsAtOnce)
            sectors = &std::get<Sectors>(waiting.emplace_back(Sectors()));
        sectors->append(sector);
        ++waitingCount;
        wakeLocked();
    }

    /// Swaps the waiting events into an empty batch; on the GUI thread.
    void take(std::vector<Event>& emptied)
    {
        {
            const std::lock_guard lock(mutex);
            waiting.swap(emptied);
            waitingCount = 0;
        }
        room.notify_all();
    }

    /// Whether nothing waits; then the next event wakes the relay.
    bool sleepIfEmpty()
    {
        const std::lock_guard lock(mutex);
        isAwake = !waiting.empty();
        return !isAwake;
    }

    void close()
    {
        {
            const std::lock_guard lock(mutex);
            closed = true;
            waiting.clear();
            waitingCount = 0;
        }
        room.notify_all();
    }

private:
    std::unique_lock<std::mutex> lockWithRoom()
    {
        std::unique_lock lock(mutex);
        room.wait(lock, [this] { return closed || waitingCount <= waitingLimit; });
        return lock;
    }

    // The relay cannot go while the lock is held and the channel is open: its
    // destructor closes the channel first.
    void wakeLocked()
    {
        if (!std::exchange(isAwake, true))
            QMetaObject::invokeMethod(relay, "deliverTurn", Qt::QueuedConnection);
    }

    std::mutex mutex;
    std::condition_variable room;
    std::vector<Event> waiting;
    std::size_t waitingCount = 0; ///< each sector by itself
    RipRelay* relay;
    bool isAwake = false; ///< or about to be
    bool closed = false;
};

RipRelay::RipRelay(QObject* parent) : QObject(parent), channel(std::make_shared<Channel>(this))
{
    pause.setSingleShot(true);
    pause.setTimerType(Qt::PreciseTimer);
    pause.setInterval(pauseMilliseconds);
    connect(&pause, &QTimer::timeout, this, &RipRelay::onPauseOver);
}

RipRelay::~RipRelay()
{
    close();
}

void RipRelay::attach(RipWorker* worker)
{
    // Connected to the channel rather than to this object, which may go while
    // the worker is inside one of these functions.
    const auto to = channel;
    connect(
        worker, &RipWorker::sectorDone, worker, [to](const SectorResult& sector) { to->push(sector); },
        Qt::DirectConnection);
    connect(
        worker, &RipWorker::trackStarted, worker,
        [to](int number, int total, const QString& title) {
            to->push(TrackStart{number, total, title});
        },
        Qt::DirectConnection);
    connect(
        worker, &RipWorker::trackDone, worker, [to](const RipResult& result) { to->push(result); },
        Qt::DirectConnection);
    connect(
        worker, &RipWorker::logLine, worker, [to](const QString& line) { to->push(LogLine{line}); },
        Qt::DirectConnection);
    connect(
        worker, &RipWorker::statusText, worker, [to](const QString& text) { to->push(StatusText{text}); },
        Qt::DirectConnection);
    connect(
        worker, &RipWorker::finished, worker, [to] { to->push(Finish{}); }, Qt::DirectConnection);
}

void RipRelay::close()
{
    channel->close();
    pause.stop();
    batch.clear();
    next = 0;
}

void RipRelay::deliverTurn()
{
    // At the begin, as a slot may run an event loop, in which delivery goes on.
    pause.start();
    const QPointer<RipRelay> self(this);
    QElapsedTimer turn;
    turn.start();
    while (fetchBatch()) {
        // Taken out first: a slot may run an event loop that comes back here.
        const Event event = std::move(batch[next++]);
        deliver(event);
        if (!self || turn.elapsed() >= turnMilliseconds)
            return;
    }
}

void RipRelay::onPauseOver()
{
    if (next < batch.size() || !channel->sleepIfEmpty())
        deliverTurn();
}

bool RipRelay::fetchBatch()
{
    if (next < batch.size())
        return true;
    batch.clear();
    next = 0;
    channel->take(batch);
    return !batch.empty();
}

void RipRelay::deliver(const Event& event)
{
    if (const auto* sectors = std::get_if<Sectors>(&event))
        Q_EMIT sectorsDone(*sectors);
    else if (const auto* start = std::get_if<TrackStart>(&event))
        Q_EMIT trackStarted(start->number, start->total, start->title);
    else if (const auto* result = std::get_if<RipResult>(&event))
        Q_EMIT trackDone(*result);
    else if (const auto* line = std::get_if<LogLine>(&event))
        Q_EMIT logLine(line->text);
    else if (const auto* status = std::get_if<StatusText>(&event))
        Q_EMIT statusText(status->text);
    else
        Q_EMIT finished();
}
