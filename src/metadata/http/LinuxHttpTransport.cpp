#include "metadata/http/HttpTransport.h"

#include "metadata/http/LinuxHttpExchange.h"
#include "metadata/http/LinuxSignalPipeBlock.h"

#include <curl/curl.h>

#include <atomic>

namespace {

class LinuxHttpTransport : public HttpTransport {
public:
    LinuxHttpTransport(const HttpLimits& bounds, const HttpDetour* way)
        : limits(bounds), detour(way ? std::make_unique<HttpDetour>(*way) : nullptr)
    {
        curl_global_init(CURL_GLOBAL_DEFAULT);
    }

    HttpAnswer get(const HttpRequest& request) override
    {
        const SignalPipeBlock quietPipes;
        return exchange(request, limits, detour.get(), stopped);
    }

    void stop() override { stopped = true; }
    bool isStopped() const override { return stopped; }

private:
    const HttpLimits limits;
    const std::unique_ptr<const HttpDetour> detour;
    std::atomic<bool> stopped = false;
};

} // namespace

std::unique_ptr<HttpTransport> makeHttpTransport(const HttpLimits& limits, const HttpDetour* detour)
{
    return std::make_unique<LinuxHttpTransport>(limits, detour);
}
