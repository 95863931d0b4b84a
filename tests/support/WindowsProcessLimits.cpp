#include "support/ProcessLimits.h"

#include <windows.h>

#include <psapi.h>

#include <atomic>
#include <thread>

namespace {

using std::chrono::seconds;

std::atomic<long long> workEndsAt = 0; // in units of 100 ns, of this process's processor time
std::atomic<int> codeAtEnd = 0;

long long unitsOf(const FILETIME& time)
{
    return static_cast<long long>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
}

long long workDone()
{
    FILETIME start, end, kernel, user;
    GetProcessTimes(GetCurrentProcess(), &start, &end, &kernel, &user);
    return unitsOf(kernel) + unitsOf(user);
}

void watchWork()
{
    for (;;) {
        Sleep(500);
        const long long most = workEndsAt;
        if (most > 0 && workDone() > most)
            TerminateProcess(GetCurrentProcess(), static_cast<UINT>(codeAtEnd.load()));
    }
}

} // namespace

namespace processlimits {

void limitMemory()
{
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_PROCESS_MEMORY;
    limits.ProcessMemoryLimit = SIZE_T{2} << 30;
    static HANDLE const job = CreateJobObjectW(nullptr, nullptr);
    SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
    AssignProcessToJobObject(job, GetCurrentProcess());
}

void limitWork(seconds most, int exitCode)
{
    static std::thread* const watch = new std::thread(watchWork);
    watch->joinable();
    codeAtEnd = exitCode;
    workEndsAt = most.count() > 0 ? workDone() + most.count() * 10'000'000 : 0;
}

long mostAllocatedKiB()
{
    PROCESS_MEMORY_COUNTERS counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return static_cast<long>(counters.PeakPagefileUsage / 1024);
}

} // namespace processlimits
