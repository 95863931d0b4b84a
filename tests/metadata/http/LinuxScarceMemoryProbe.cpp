// Asks a server on this machine for a body that memory does not hold, and says
// what became of the request.
//
//   tarvel_scarce_memory_probe PORT

#include "metadata/http/HttpTransport.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sys/resource.h>
#include <unistd.h>

namespace {

void limitMemory()
{
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    // With a sanitizer, whose shadow takes terabytes of addresses, the limits are
    // among its own options.
    rlim_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    const rlim_t most = pages * static_cast<rlim_t>(getpagesize()) + (rlim_t{32} << 20);
    const rlimit limit{most, most};
    setrlimit(RLIMIT_AS, &limit);
#endif
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    limitMemory();
    HttpDetour detour;
    detour.plainPort = static_cast<quint16>(std::atoi(argv[1]));
    HttpRequest request;
    request.host = QStringLiteral("a.test");
    request.agentName = "probe";
    request.extraHeader = "X: y";
    const HttpAnswer answer = makeHttpTransport({}, &detour)->get(request);
    std::printf("stage %d status %d body %d\n", static_cast<int>(answer.stage), answer.status,
                static_cast<int>(answer.body.size()));
    return 0;
}
