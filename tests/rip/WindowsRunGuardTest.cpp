// What a run asks of Windows, and that all of it is taken back, by the calls themselves.

#include "rip/RunGuard.h"

#include "RunRecorder.h"
#include "support/SimulatedDrive.h"

#include <windows.h>

#include <mmsystem.h>

#include <QStringList>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <memory>
#include <set>

namespace {

/// Takes the place of the system's calls for its lifetime.
struct PlayedCalls {
    static inline PlayedCalls* active = nullptr;

    PlayedCalls() { active = this; }
    ~PlayedCalls() { active = nullptr; }

    void note(const char* name, quint32 value)
    {
        calls.append(QStringLiteral("%1 %2").arg(QLatin1String(name), QString::number(value, 16)));
        threads.insert(GetCurrentThreadId());
    }

    QStringList calls; ///< in order, with their number in hexadecimal
    std::set<DWORD> threads;
    bool timerRefused = false;
    bool prioritiesRefused = false;
    EXECUTION_STATE stateBefore = 0x80000000;
};

template<typename Function>
Function* realCall(const wchar_t* library, const char* name)
{
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(library), name)));
}

MMRESULT WINAPI beginPeriod(UINT milliseconds)
{
    if (!PlayedCalls::active)
        return realCall<decltype(timeBeginPeriod)>(L"winmm.dll", "timeBeginPeriod")(milliseconds);
    PlayedCalls::active->note("timeBeginPeriod", milliseconds);
    return PlayedCalls::active->timerRefused ? TIMERR_NOCANDO : TIMERR_NOERROR;
}

MMRESULT WINAPI endPeriod(UINT milliseconds)
{
    if (!PlayedCalls::active)
        return realCall<decltype(timeEndPeriod)>(L"winmm.dll", "timeEndPeriod")(milliseconds);
    PlayedCalls::active->note("timeEndPeriod", milliseconds);
    return TIMERR_NOERROR;
}

BOOL WINAPI setThreadPriority(HANDLE thread, int priority)
{
    if (!PlayedCalls::active)
        return realCall<decltype(SetThreadPriority)>(L"kernel32.dll", "SetThreadPriority")(thread, priority);
    EXPECT_EQ(thread, GetCurrentThread());
    PlayedCalls::active->note("SetThreadPriority", static_cast<quint32>(priority));
    return !PlayedCalls::active->prioritiesRefused;
}

BOOL WINAPI setPriorityClass(HANDLE process, DWORD priority)
{
    if (!PlayedCalls::active)
        return realCall<decltype(SetPriorityClass)>(L"kernel32.dll", "SetPriorityClass")(process, priority);
    EXPECT_EQ(process, GetCurrentProcess());
    PlayedCalls::active->note("SetPriorityClass", priority);
    return !PlayedCalls::active->prioritiesRefused;
}

EXECUTION_STATE WINAPI setExecutionState(EXECUTION_STATE state)
{
    if (!PlayedCalls::active)
        return realCall<decltype(SetThreadExecutionState)>(L"kernel32.dll", "SetThreadExecutionState")(state);
    PlayedCalls::active->note("SetThreadExecutionState", state);
    return PlayedCalls::active->stateBefore;
}

/// The real guard, whatever the other tests have put in its place.
struct RealGuard {
    std::unique_ptr<RunGuard> guard = makeRunGuard();
    RunGuardOverride inPlace{*guard};
};

const QStringList raised{QStringLiteral("timeBeginPeriod 1"), QStringLiteral("SetThreadPriority 2"),
                         QStringLiteral("SetPriorityClass 80"),
                         QStringLiteral("SetThreadExecutionState 80000041")};
const QStringList lowered{QStringLiteral("timeEndPeriod 1"), QStringLiteral("SetThreadPriority 0"),
                          QStringLiteral("SetPriorityClass 20"),
                          QStringLiteral("SetThreadExecutionState 80000000")};

} // namespace

extern "C" {

decltype(&timeBeginPeriod) __imp_timeBeginPeriod = beginPeriod;
decltype(&timeEndPeriod) __imp_timeEndPeriod = endPeriod;
decltype(&SetThreadPriority) __imp_SetThreadPriority = setThreadPriority;
decltype(&SetPriorityClass) __imp_SetPriorityClass = setPriorityClass;
decltype(&SetThreadExecutionState) __imp_SetThreadExecutionState = setExecutionState;

} // extern "C"

TEST(WindowsRunGuard, AsksForFourThingsAndTakesThemBackInOrder)
{
    PlayedCalls played;
    const auto guard = makeRunGuard();
    EXPECT_TRUE(played.calls.isEmpty());
    guard->begin();
    EXPECT_EQ(played.calls, raised);
    guard->end();
    EXPECT_EQ(played.calls, raised + lowered);
}

TEST(WindowsRunGuard, TheStateOfSleepIsWhatItWasBefore)
{
    PlayedCalls played;
    const auto guard = makeRunGuard();
    for (const EXECUTION_STATE before : {0x80000000U, 0x80000001U, 0x80000003U}) {
        played.stateBefore = before;
        played.calls.clear();
        guard->begin();
        played.stateBefore = 0x80000041; // what the call that takes it back returns
        guard->end();
        EXPECT_EQ(played.calls.constLast(), QStringLiteral("SetThreadExecutionState %1").arg(before, 0, 16));
    }
}

TEST(WindowsRunGuard, ATimerThatIsRefusedIsNotTakenBack)
{
    PlayedCalls played;
    played.timerRefused = true;
    const auto guard = makeRunGuard();
    guard->begin();
    guard->end();
    EXPECT_EQ(played.calls, raised + lowered.mid(1));
    played.timerRefused = false;
    played.calls.clear();
    guard->begin();
    guard->end();
    EXPECT_EQ(played.calls, raised + lowered) << "the next run has its timer";
}

TEST(WindowsRunGuard, SleepThatIsNotInhibitedIsNotAllowedAgain)
{
    PlayedCalls played;
    played.stateBefore = 0;
    const auto guard = makeRunGuard();
    guard->begin();
    guard->end();
    EXPECT_EQ(played.calls, raised + lowered.first(3));
}

TEST(WindowsRunGuard, PrioritiesThatAreRefusedKeepNothingElseFromItsCourse)
{
    PlayedCalls played;
    played.prioritiesRefused = true;
    const auto guard = makeRunGuard();
    guard->begin();
    guard->end();
    EXPECT_EQ(played.calls, raised + lowered);
}

TEST(WindowsRunGuard, ARunOfADiscRaisesAndLowersOnItsOwnThread)
{
    SimulatedDrive drive;
    const DrivePlatformOverride platform(drive);
    const RealGuard real;
    drive.audio = makeAudio(60, 3);
    const QTemporaryDir folder;
    PlayedCalls played;
    RunRecorder run;
    DWORD runningThread = 0;
    QStringList calledBeforeReading;
    run.onSector = [&](const SectorResult&) { calledBeforeReading = played.calls; };
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        runningThread = GetCurrentThreadId();
        run.ripDisc(folder.path());
    }));
    thread->start();
    thread->wait();
    EXPECT_EQ(run.finishedCount, 1);
    EXPECT_EQ(calledBeforeReading, raised);
    EXPECT_EQ(played.calls, raised + lowered);
    EXPECT_EQ(played.threads, std::set<DWORD>{runningThread});
}

TEST(WindowsRunGuard, ARunWithoutTracksTouchesNothing)
{
    const RealGuard real;
    PlayedCalls played;
    RunRecorder run;
    run.worker.configure(nullptr, DiscToc(), QString(), QString(), QString(), QString(), QPixmap(), QString(),
                         1, 1, 300, OutputWav, QString(), 20);
    run.worker.run();
    EXPECT_EQ(run.finishedCount, 1);
    EXPECT_TRUE(played.calls.isEmpty());
}
