#include "support/ProcessLimits.h"

#include <QFile>

#include <csignal>
#include <cstdlib>
#include <sys/resource.h>
#include <sys/time.h>
#include <unistd.h>

static volatile sig_atomic_t codeAtEnd = 0;

namespace processlimits {

void limitMemory()
{
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    // A sanitizer's shadow takes terabytes of addresses.
    const rlimit limit{rlim_t{2} << 30, rlim_t{2} << 30};
    setrlimit(RLIMIT_AS, &limit);
#endif
}

void limitWork(std::chrono::seconds most, int exitCode)
{
    codeAtEnd = exitCode;
    std::signal(SIGPROF, [](int) { _exit(codeAtEnd); });
    const itimerval timer{{0, 0}, {most.count(), 0}};
    setitimer(ITIMER_PROF, &timer, nullptr);
}

long mostAllocatedKiB()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray all = status.readAll();
    const qsizetype line = all.indexOf("VmPeak:");
    return std::strtol(all.constData() + line + 7, nullptr, 10);
}

} // namespace processlimits
