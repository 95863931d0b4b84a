#include <cxxabi.h>

// At the end of a thread, and of the process, the compiler's run-time goes through what
// it keeps for the thread in the order in which it first needed it: the memory of the
// thread's own variables, and the list of their destructors. Asked for first, the list
// is worked off while the memory is still there, in the libraries' variables too. Else
// a thread crashes that has matched a regular expression, and a process that has ripped
// waits for ever at its end. The linker takes this in by its name.
extern "C" [[gnu::constructor(101)]] void destroyBeforeFreeing()
{
    abi::__cxa_thread_atexit([](void*) {}, nullptr, nullptr);
}
