#include "ui/DrawThrottle.h"

#include <utility>

DrawThrottle::DrawThrottle(std::function<void()> draw, QObject* parent)
    : QObject(parent), drawState(std::move(draw))
{
    interval.setSingleShot(true);
    interval.setTimerType(Qt::PreciseTimer);
    interval.setInterval(intervalMilliseconds);
    connect(&interval, &QTimer::timeout, this, &DrawThrottle::onInterval);
}

void DrawThrottle::request()
{
    if (interval.isActive()) {
        pending = true;
        return;
    }
    interval.start();
    drawState();
}

void DrawThrottle::flush()
{
    if (!pending)
        return;
    pending = false;
    drawState();
}

void DrawThrottle::onInterval()
{
    if (!pending)
        return;
    interval.start();
    flush();
}
