#pragma once

#include <QFutureWatcher>
#include <QThreadPool>
#include <QtConcurrentRun>

#include <type_traits>
#include <utility>

/// Runs work on a thread of the pool and hands what it returns to `apply`, on the
/// thread of the context, once that is back in its event loop. Nothing is applied
/// after the context is gone; the work goes on to its end all the same.
///
/// @param work  throws nothing: an exception would come out of the event loop
template<typename Work, typename Apply>
void runInBackground(QObject* context, Work work, Apply apply)
{
    using Watcher = QFutureWatcher<std::invoke_result_t<Work>>;
    auto* watcher = new Watcher(context);
    QObject::connect(watcher, &Watcher::finished, context, [watcher, apply = std::move(apply)] {
        watcher->deleteLater();
        apply(watcher->result());
    });
    watcher->setFuture(QtConcurrent::run(QThreadPool::globalInstance(), std::move(work)));
}
