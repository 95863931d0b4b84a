#pragma once

#include "base/Handover.h"

#include <QFuture>
#include <QFutureWatcher>

#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

/// Runs work on a thread of the pool; the future is finished after it.
QFuture<void> startOnPool(std::function<void()> work);

/// Waits until nothing is under way on the pool, at most so long where that is not
/// negative, and says whether it is so. What the work used may go then.
bool waitForBackground(int milliseconds = -1);

/// Runs work on a thread of the pool and hands what it returns to `apply`, on the
/// thread of the context, once that is back in its event loop. Nothing is applied
/// after the context is gone; the work goes on to its end all the same.
///
/// @param work  throws nothing: an exception would end the process
template<typename Work, typename Apply>
void runInBackground(QObject* context, Work work, Apply apply)
{
    struct Outcome {
        std::optional<std::invoke_result_t<Work>> result;
        Handover filled;
    };
    const auto outcome = std::make_shared<Outcome>();
    auto* watcher = new QFutureWatcher<void>(context);
    QObject::connect(watcher, &QFutureWatcherBase::finished, context,
                     [watcher, outcome, apply = std::move(apply)] {
                         watcher->deleteLater();
                         outcome->filled.take();
                         apply(*outcome->result);
                     });
    watcher->setFuture(startOnPool([work = std::move(work), outcome]() mutable {
        outcome->result = work();
        outcome->filled.give();
    }));
}
