#include "rip/RunGuard.h"

#include <windows.h>

#include <mmsystem.h>

namespace {

constexpr UINT timerMilliseconds = 1;

// A part that the system refuses leaves nothing to undo: the timer is counted for the
// whole process, and somebody else may have raised it.
class WindowsRunGuard : public RunGuard {
public:
    void begin() override
    {
        timerRaised = timeBeginPeriod(timerMilliseconds) == TIMERR_NOERROR;
        SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_HIGHEST);
        SetPriorityClass(GetCurrentProcess(), HIGH_PRIORITY_CLASS);
        stateBefore = SetThreadExecutionState(ES_CONTINUOUS | ES_SYSTEM_REQUIRED | ES_AWAYMODE_REQUIRED);
    }

    void end() override
    {
        if (timerRaised)
            timeEndPeriod(timerMilliseconds);
        SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_NORMAL);
        SetPriorityClass(GetCurrentProcess(), NORMAL_PRIORITY_CLASS);
        if (stateBefore != 0)
            SetThreadExecutionState(stateBefore);
    }

private:
    bool timerRaised = false;
    EXECUTION_STATE stateBefore = 0; ///< none when it could not be changed
};

} // namespace

std::unique_ptr<RunGuard> makeRunGuard()
{
    return std::make_unique<WindowsRunGuard>();
}
