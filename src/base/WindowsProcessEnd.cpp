#include "base/ProcessEnd.h"

#include <windows.h>

#include <cstdio>
#include <cxxabi.h>

// At the end of a thread the compiler's run-time goes through what it keeps for the
// thread in the order in which it first needed it in the process: the memory of the
// thread's own variables, and the list of their destructors. Asked for first, the list
// is worked off while the memory is still there, in the libraries' variables too.
[[gnu::constructor(101)]] static void askForListBeforeMemory()
{
    abi::__cxa_thread_atexit([](void*) {}, nullptr, nullptr);
}

// After a rip the compiler's thread library waits for ever, among the last clean-ups
// of the process, for a lock that no thread is left to release. By now all that must
// be kept has been written.
int endOfMain(int exitCode)
{
    std::fflush(nullptr);
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(exitCode));
    return exitCode;
}
