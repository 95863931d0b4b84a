// Linked into the tests that are built for the thread sanitizer. Qt starts a
// process through a clone that lends it the memory of its parent. The sanitizer
// takes every clone for a fork: it settles the state of the calling thread once in
// the parent and once in the child, here twice in the same memory, and overlooks
// that thread's locks and atomics from then on. A child with a memory of its own
// keeps it seeing.

#include <cstdarg>
#include <sched.h>

#include <dlfcn.h>

extern "C" int clone(int (*run)(void*), void* stack, int flags, void* argument, ...)
{
    std::va_list rest;
    va_start(rest, argument);
    auto* parentTid = va_arg(rest, pid_t*);
    auto* tls = va_arg(rest, void*);
    auto* childTid = va_arg(rest, pid_t*);
    va_end(rest);
    static const auto next = reinterpret_cast<decltype(&clone)>(dlsym(RTLD_NEXT, "clone"));
    return next(run, stack, flags & ~CLONE_VM, argument, parentTid, tls, childTid);
}
