#include "support/LogCapture.h"

#include <QList>
#include <QtGlobal>

#include <mutex>
#include <utility>

namespace {

std::mutex guard;
QList<std::pair<QtMsgType, QString>> collected;
QtMessageHandler previous = nullptr;

void collect(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    const std::lock_guard lock(guard);
    collected.append({type, text});
}

template<typename Wanted>
QStringList linesWhere(Wanted wanted)
{
    const std::lock_guard lock(guard);
    QStringList texts;
    for (const auto& [type, text] : std::as_const(collected)) {
        if (wanted(type))
            texts.append(text);
    }
    return texts;
}

} // namespace

LogCapture::LogCapture()
{
    const std::lock_guard lock(guard);
    collected.clear();
    previous = qInstallMessageHandler(collect);
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(previous);
}

QStringList LogCapture::debugLines() const
{
    return linesWhere([](QtMsgType type) { return type == QtDebugMsg; });
}

QStringList LogCapture::warnings() const
{
    return linesWhere([](QtMsgType type) { return type == QtWarningMsg; });
}

QStringList LogCapture::lines() const
{
    return linesWhere([](QtMsgType) { return true; });
}
