#include "base/ProcessEnd.h"

#include <windows.h>

#include <cstdio>

// After a rip the compiler's thread library waits for ever, among the last clean-ups
// of the process, for a lock that no thread is left to release. By now all that must
// be kept has been written.
int endOfMain(int exitCode)
{
    std::fflush(nullptr);
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(exitCode));
    return exitCode;
}
