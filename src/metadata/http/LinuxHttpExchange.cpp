#include "metadata/http/LinuxHttpExchange.h"

#include "metadata/http/HttpAddress.h"
#include "metadata/http/HttpStatus.h"

#include <curl/curl.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <new>
#include <utility>

namespace {

using Clock = std::chrono::steady_clock;
constexpr int pollMilliseconds = 100;

struct EasyCloser {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
struct MultiCloser {
    void operator()(CURLM* handle) const { curl_multi_cleanup(handle); }
};
struct ListCloser {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using EasyHandle = std::unique_ptr<CURL, EasyCloser>;
using MultiHandle = std::unique_ptr<CURLM, MultiCloser>;
using List = std::unique_ptr<curl_slist, ListCloser>;

bool append(List& list, const QByteArray& line)
{
    curl_slist* longer = curl_slist_append(list.get(), line.constData());
    if (!longer)
        return false;
    (void)list.release();
    list.reset(longer);
    return true;
}

/// One request and its redirects, with a session of its own.
class Exchange {
public:
    Exchange(const HttpRequest& wanted, const HttpLimits& bounds, const std::atomic<bool>& stopFlag)
        : request(wanted), limits(bounds), stopped(stopFlag)
    {
    }

    HttpAnswer run(const HttpDetour* detour);

private:
    bool prepare(const HttpDetour* detour);
    bool prepareDetour(const HttpDetour& detour);
    CURLcode performHop();
    const char* location() const; ///< where a redirect leads; null for any other answer
    int status() const;
    bool wantsBody() const;
    void heard() { lastByte = Clock::now(); }
    bool tooSilent() const;

    static size_t onHeader(char* bytes, size_t size, size_t count, void* self);
    static size_t onBody(char* bytes, size_t size, size_t count, void* self);
    static int onConnected(void* self, char*, char*, int, int);

    const HttpRequest& request;
    const HttpLimits& limits;
    const std::atomic<bool>& stopped;
    List headers;
    List connectTo;
    EasyHandle easy;
    MultiHandle multi;

    Clock::time_point lastByte;
    bool connected = false;
    bool headComplete = false;
    bool outOfMemory = false; ///< a body did not fit; it breaks off without being one
    qsizetype headSize = 0;
    QByteArray body;
};

size_t Exchange::onHeader(char* bytes, size_t size, size_t count, void* self)
{
    auto& exchange = *static_cast<Exchange*>(self);
    const size_t length = size * count;
    exchange.heard();
    exchange.headSize += static_cast<qsizetype>(length);
    if (exchange.headSize > exchange.limits.headBytes)
        return 0;
    const bool blankLine = length > 0 && (bytes[0] == '\r' || bytes[0] == '\n');
    if (blankLine && exchange.status() >= httpStatusOk)
        exchange.headComplete = true;
    return length;
}

int Exchange::status() const
{
    long code = 0;
    curl_easy_getinfo(easy.get(), CURLINFO_RESPONSE_CODE, &code);
    return static_cast<int>(code);
}

const char* Exchange::location() const
{
    curl_header* header = nullptr;
    const bool found = isRedirect(status())
                       && curl_easy_header(easy.get(), "Location", 0, CURLH_HEADER, -1, &header) == CURLHE_OK;
    return found ? header->value : nullptr;
}

bool Exchange::wantsBody() const
{
    return status() == httpStatusOk || (request.bodyOfEveryStatus && !location());
}

size_t Exchange::onBody(char* bytes, size_t size, size_t count, void* self)
{
    auto& exchange = *static_cast<Exchange*>(self);
    const auto length = static_cast<qsizetype>(size * count);
    exchange.heard();
    if (!exchange.wantsBody())
        return 0;
    const qsizetype room = exchange.limits.bodyBytes - exchange.body.size();
    // No exception may pass through the library.
    try {
        exchange.body.append(bytes, std::min(room, length));
    } catch (const std::bad_alloc&) {
        exchange.outOfMemory = true;
        return 0;
    }
    return length <= room ? size * count : 0;
}

int Exchange::onConnected(void* self, char*, char*, int, int)
{
    auto& exchange = *static_cast<Exchange*>(self);
    exchange.connected = true;
    exchange.heard();
    return CURL_PREREQFUNC_OK;
}

bool Exchange::tooSilent() const
{
    // Until the connection stands, libcurl's own connect time-out rules.
    return connected && Clock::now() - lastByte > std::chrono::milliseconds(limits.silenceMilliseconds);
}

bool Exchange::prepareDetour(const HttpDetour& detour)
{
    // The last entry takes whatever is left to a port where nobody listens.
    const QByteArray plain = ":80:127.0.0.1:" + QByteArray::number(detour.plainPort);
    const QByteArray secure = ":443:127.0.0.1:" + QByteArray::number(detour.securePort);
    CURL* handle = easy.get();
    return append(connectTo, plain) && append(connectTo, secure) && append(connectTo, "::127.0.0.1:1")
           && curl_easy_setopt(handle, CURLOPT_CONNECT_TO, connectTo.get()) == CURLE_OK
           && curl_easy_setopt(handle, CURLOPT_PROXY, "") == CURLE_OK
           && curl_easy_setopt(handle, CURLOPT_CAPATH, nullptr) == CURLE_OK
           && curl_easy_setopt(handle, CURLOPT_CAINFO, detour.certificateAuthority.toLocal8Bit().constData())
                  == CURLE_OK;
}

bool Exchange::prepare(const HttpDetour* detour)
{
    // A line that libcurl makes itself would give way to a header of that name,
    // so both User-Agent lines are headers. An empty Accept keeps its own away.
    if (!append(headers, "User-Agent: " + request.agentName) || !append(headers, request.extraHeader)
        || !append(headers, "Accept:"))
        return false;

    bool good = true;
    const auto set = [this, &good](CURLoption option, auto value) {
        good = good && curl_easy_setopt(easy.get(), option, value) == CURLE_OK;
    };
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_HTTPHEADER, headers.get());
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_HTTP_VERSION, long{CURL_HTTP_VERSION_1_1});
    set(CURLOPT_FOLLOWLOCATION, 0L);
    set(CURLOPT_PATH_AS_IS, 1L);
    set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    set(CURLOPT_SSL_VERIFYPEER, 1L);
    set(CURLOPT_SSL_VERIFYHOST, 2L);
    set(CURLOPT_COOKIEFILE, ""); // remembered from redirect to redirect, in memory
    set(CURLOPT_CONNECTTIMEOUT_MS, long{limits.connectMilliseconds});
    set(CURLOPT_PREREQFUNCTION, &Exchange::onConnected);
    set(CURLOPT_PREREQDATA, static_cast<void*>(this));
    set(CURLOPT_HEADERFUNCTION, &Exchange::onHeader);
    set(CURLOPT_HEADERDATA, static_cast<void*>(this));
    set(CURLOPT_WRITEFUNCTION, &Exchange::onBody);
    set(CURLOPT_WRITEDATA, static_cast<void*>(this));
    return good && (!detour || prepareDetour(*detour));
}

CURLcode Exchange::performHop()
{
    connected = false;
    headComplete = false;
    headSize = 0;
    body.clear();
    heard();
    if (curl_multi_add_handle(multi.get(), easy.get()) != CURLM_OK)
        return CURLE_FAILED_INIT;

    CURLcode result = CURLE_OPERATION_TIMEDOUT;
    int running = 1;
    while (!stopped && curl_multi_perform(multi.get(), &running) == CURLM_OK) {
        if (running == 0) {
            int left = 0;
            if (const CURLMsg* message = curl_multi_info_read(multi.get(), &left))
                result = message->data.result;
            break;
        }
        // Asked behind the read, so that bytes which lay waiting count as heard.
        if (tooSilent())
            break;
        const int wait = std::min(pollMilliseconds, limits.silenceMilliseconds);
        curl_multi_poll(multi.get(), nullptr, 0, wait, nullptr);
    }
    // A name that does not resolve must not hold up the end of the program.
    if (stopped)
        curl_easy_setopt(easy.get(), CURLOPT_QUICK_EXIT, 1L);
    curl_multi_remove_handle(multi.get(), easy.get());
    return result;
}

HttpAnswer Exchange::run(const HttpDetour* detour)
{
    HttpAnswer answer;
    easy.reset(curl_easy_init());
    multi.reset(curl_multi_init());
    if (!easy || !multi)
        return answer;

    answer.stage = HttpStage::Connect;
    QByteArray address = addressOf(request);
    if (address.isEmpty())
        return answer;

    answer.stage = HttpStage::Request;
    if (!prepare(detour))
        return answer;

    answer.stage = HttpStage::Exchange;
    for (int hop = 0; hop <= limits.redirects; ++hop) {
        if (curl_easy_setopt(easy.get(), CURLOPT_URL, address.constData()) != CURLE_OK)
            return answer;
        answer.errorCode = performHop();
        if (!headComplete || stopped || outOfMemory)
            return answer;
        const QByteArray next = location() ? followedAddress(address, location()) : QByteArray();
        const bool stepDown = address.startsWith("https:") && next.startsWith("http:");
        if (!location() || (stepDown && !request.stepDownAllowed)) {
            answer.stage = HttpStage::Answered;
            answer.status = status();
            answer.body = std::move(body);
            return answer;
        }
        address = next;
    }
    answer.errorCode = CURLE_TOO_MANY_REDIRECTS;
    return answer;
}

} // namespace

HttpAnswer exchange(const HttpRequest& request, const HttpLimits& limits, const HttpDetour* detour,
                    const std::atomic<bool>& stopped)
{
    return Exchange(request, limits, stopped).run(detour);
}
