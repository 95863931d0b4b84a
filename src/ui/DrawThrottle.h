#pragma once

#include <QObject>
#include <QTimer>

#include <functional>

/// Keeps drawing at no more than 60 times a second however often the state
/// changes. The first change after a pause is drawn at once, and the last one
/// always. GUI thread only.
class DrawThrottle : public QObject {
    Q_OBJECT
public:
    static constexpr int intervalMilliseconds = 17;

    /// @param draw  shows the state as it is when called
    explicit DrawThrottle(std::function<void()> draw, QObject* parent = nullptr);

    /// The state has changed.
    void request();
    /// Draws now what has not been drawn yet; nothing when all is drawn.
    void flush();
    /// Forgets a change that has not been drawn.
    void cancel() { pending = false; }

private:
    void onInterval();

    std::function<void()> drawState;
    QTimer interval;
    bool pending = false;
};
