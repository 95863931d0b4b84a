#include "ui/Background.h"

#include <QPromise>
#include <QRunnable>
#include <QThreadPool>

namespace {

Handover endedTasks;

/// Deleted by the pool, on the thread that ran it.
class Task : public QRunnable {
public:
    explicit Task(std::function<void()> given) : work(std::move(given)) { made.give(); }
    ~Task() override
    {
        work = nullptr;
        endedTasks.give();
    }

    QFuture<void> end() { return promise.future(); }
    void run() override
    {
        made.take();
        work();
        promise.finish();
    }

private:
    std::function<void()> work;
    QPromise<void> promise;
    Handover made;
};

} // namespace

QFuture<void> startOnPool(std::function<void()> work)
{
    auto task = std::make_unique<Task>(std::move(work));
    QFuture<void> end = task->end();
    QThreadPool::globalInstance()->start(task.release());
    return end;
}

bool waitForBackground(int milliseconds)
{
    const bool done = QThreadPool::globalInstance()->waitForDone(milliseconds);
    endedTasks.take();
    return done;
}
