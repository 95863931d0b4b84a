#pragma once

#include "endurance/StepPace.h"
#include "ui/WindowDriver.h"

#include <QObject>
#include <QStringList>

struct SectorResult;
struct RipResult;

/// Knows from the window's signals how its buttons, log, counters and map have to
/// be, and says what is otherwise. One for each window, made when that is.
class WindowWatch : public QObject {
    Q_OBJECT
public:
    WindowWatch(WindowDriver& driver, const StepPace& pace);

    /// Takes in what has come up by itself; in front of each step.
    void observe();
    /// What does not hold at this moment; empty when all is well.
    QStringList complaints();
    int ripsSeen() const { return allStarts; }

private:
    void followButtons();
    void followRips();
    void ripWasClicked();
    void emptyDisplay();
    void ripHasEnded();
    bool eventFilter(QObject* watched, QEvent* event) override;

    void checkButtons(QStringList& wrong);
    void checkDialogs(QStringList& wrong);
    void checkLog(QStringList& wrong);
    void checkResult(const QStringList& log);
    void checkMap();
    int paintedCells();

    WindowDriver& app;
    const StepPace& pace;
    QWidget* map = nullptr;

    bool nextOn = true;
    bool ripOn = true;
    int startsUnderWay = 0;
    int allStarts = 0;
    bool alone = true; ///< no other rip was under way at any time since the last start
    bool mapIsWhole = true;
    int sectors = 0;
    int errors = 0;
    int suspects = 0;
    int saved = 0;
    int checkedRevision = -1;
    QStringList atTheEnd; ///< what did not hold when a rip ended
};
