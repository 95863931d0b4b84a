#include "metadata/http/HttpAddress.h"
#include "metadata/http/HttpStatus.h"
#include "metadata/http/HttpTransport.h"
#include "metadata/http/WindowsHttpAddress.h"
#include "metadata/http/WindowsHttpConversation.h"

#include <algorithm>
#include <atomic>
#include <new>
#include <optional>
#include <type_traits>

namespace {

using std::chrono::milliseconds;

struct HandleCloser {
    void operator()(HINTERNET handle) const { WinHttpCloseHandle(handle); }
};
using Handle = std::unique_ptr<std::remove_pointer_t<HINTERNET>, HandleCloser>;

constexpr milliseconds pollStep{50};

bool setNumber(const Handle& handle, DWORD option, DWORD number)
{
    return WinHttpSetOption(handle.get(), option, &number, sizeof number);
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
    bool openSession(const HttpDetour* detour);
    bool connect(const WindowsHttpPlace& place);
    bool openRequest(const WindowsHttpPlace& place);
    /// Sends what is open, and waits for the head of the answer.
    WindowsHttpConversation::Reply send();
    /// Waits for the step that a call has begun.
    WindowsHttpConversation::Reply outcome(BOOL begun);
    bool isOverdue() const;
    int status() const;
    /// Of the head: all of it, or one of its fields.
    std::optional<QByteArray> head(DWORD what) const;
    bool isTooLong() const;
    std::optional<QByteArray> location() const;
    void takeAnswer(HttpAnswer& answer, bool redirected);
    QByteArray body();

    const HttpRequest& request;
    const HttpLimits& limits;
    const std::atomic<bool>& stopped;
    std::shared_ptr<WindowsHttpConversation> conversation; ///< of the request that is open
    // In the order in which they open; they close in the other.
    Handle session;
    Handle connection;
    Handle exchange;
    DWORD_PTR context = 0;
};

bool Exchange::openSession(const HttpDetour* detour)
{
    const std::wstring agent = QString::fromLatin1(request.agentName).toStdWString();
    // Every connection goes through it, also those to secure hosts.
    const std::wstring way =
        detour ? QStringLiteral("127.0.0.1:%1").arg(detour->plainPort).toStdWString() : std::wstring();
    const DWORD access = detour ? WINHTTP_ACCESS_TYPE_NAMED_PROXY : WINHTTP_ACCESS_TYPE_DEFAULT_PROXY;
    session.reset(WinHttpOpen(agent.c_str(), access, detour ? way.c_str() : WINHTTP_NO_PROXY_NAME,
                              WINHTTP_NO_PROXY_BYPASS, WINHTTP_FLAG_ASYNC));
    return session != nullptr;
}

bool Exchange::connect(const WindowsHttpPlace& place)
{
    exchange.reset();
    connection.reset();
    if (!place.host.isEmpty())
        connection.reset(WinHttpConnect(session.get(), place.host.toStdWString().c_str(), place.port, 0));
    return connection != nullptr;
}

// WinHTTP's own limits lie a little above ours, so that ours decide. Redirects are
// followed here: what it makes of them differs from version to version.
bool Exchange::openRequest(const WindowsHttpPlace& place)
{
    const std::wstring target = QString::fromLatin1(place.target).toStdWString();
    exchange.reset(WinHttpOpenRequest(
        connection.get(), L"GET", target.c_str(), nullptr, WINHTTP_NO_REFERER, WINHTTP_DEFAULT_ACCEPT_TYPES,
        WINHTTP_FLAG_ESCAPE_DISABLE | (place.secure ? WINHTTP_FLAG_SECURE : 0)));
    conversation = std::make_shared<WindowsHttpConversation>();
    context = exchange ? WindowsHttpConversation::listen(exchange.get(), conversation) : 0;
    if (context == 0)
        return false;
    constexpr int margin = 1000;
    const int connecting = limits.connectMilliseconds + margin;
    const int silence = limits.silenceMilliseconds + margin;
    const std::wstring header = QString::fromLatin1(request.extraHeader).toStdWString();
    return WinHttpSetTimeouts(exchange.get(), connecting, connecting, silence, silence)
           && setNumber(exchange, WINHTTP_OPTION_RECEIVE_RESPONSE_TIMEOUT, static_cast<DWORD>(silence))
           && setNumber(exchange, WINHTTP_OPTION_REDIRECT_POLICY, WINHTTP_OPTION_REDIRECT_POLICY_NEVER)
           && WinHttpAddRequestHeaders(exchange.get(), header.c_str(), DWORD(-1), WINHTTP_ADDREQ_FLAG_ADD);
}

bool Exchange::isOverdue() const
{
    const milliseconds limit(conversation->isConnected() ? limits.silenceMilliseconds
                                                         : limits.connectMilliseconds);
    return WindowsHttpConversation::Clock::now() - conversation->lastSign() > limit;
}

WindowsHttpConversation::Reply Exchange::outcome(BOOL begun)
{
    if (!begun)
        return {false, GetLastError(), 0};
    while (!stopped) {
        if (const auto reply = conversation->within(pollStep))
            return *reply;
        if (isOverdue())
            return {false, ERROR_WINHTTP_TIMEOUT, 0};
    }
    return {false, ERROR_WINHTTP_OPERATION_CANCELLED, 0};
}

WindowsHttpConversation::Reply Exchange::send()
{
    const auto sent = outcome(WinHttpSendRequest(exchange.get(), WINHTTP_NO_ADDITIONAL_HEADERS, 0,
                                                 WINHTTP_NO_REQUEST_DATA, 0, 0, context));
    const auto received = sent.ok ? outcome(WinHttpReceiveResponse(exchange.get(), nullptr)) : sent;
    const bool interim = received.ok && status() < httpStatusOk;
    return interim ? WindowsHttpConversation::Reply{false, ERROR_WINHTTP_INVALID_SERVER_RESPONSE, 0}
                   : received;
}

int Exchange::status() const
{
    DWORD code = 0;
    DWORD size = sizeof code;
    WinHttpQueryHeaders(exchange.get(), WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER,
                        WINHTTP_HEADER_NAME_BY_INDEX, &code, &size, WINHTTP_NO_HEADER_INDEX);
    return static_cast<int>(code);
}

std::optional<QByteArray> Exchange::head(DWORD what) const
{
    DWORD bytes = 0;
    WinHttpQueryHeaders(exchange.get(), what, WINHTTP_HEADER_NAME_BY_INDEX, WINHTTP_NO_OUTPUT_BUFFER, &bytes,
                        WINHTTP_NO_HEADER_INDEX);
    std::wstring text(bytes / sizeof(wchar_t), L'\0');
    if (text.empty()
        || !WinHttpQueryHeaders(exchange.get(), what, WINHTTP_HEADER_NAME_BY_INDEX, text.data(), &bytes,
                                WINHTTP_NO_HEADER_INDEX))
        return std::nullopt;
    text.resize(bytes / sizeof(wchar_t));
    // Its text is what the bytes mean in the local code page.
    return QString::fromStdWString(text).toLocal8Bit();
}

bool Exchange::isTooLong() const
{
    const auto all = head(WINHTTP_QUERY_RAW_HEADERS_CRLF);
    return all && all->size() > limits.headBytes;
}

std::optional<QByteArray> Exchange::location() const
{
    return isRedirect(status()) ? head(WINHTTP_QUERY_LOCATION) : std::nullopt;
}

QByteArray Exchange::body()
{
    QByteArray whole;
    while (whole.size() < limits.bodyBytes) {
        const auto there = outcome(WinHttpQueryDataAvailable(exchange.get(), nullptr));
        if (!there.ok || there.amount == 0)
            break;
        conversation->buffer.resize(static_cast<qsizetype>(there.amount));
        const auto read =
            outcome(WinHttpReadData(exchange.get(), conversation->buffer.data(), there.amount, nullptr));
        if (!read.ok)
            break;
        const qsizetype room = limits.bodyBytes - whole.size();
        whole.append(conversation->buffer.constData(), std::min<qsizetype>(read.amount, room));
    }
    return whole;
}

void Exchange::takeAnswer(HttpAnswer& answer, bool redirected)
{
    const int code = status();
    try {
        if (code == httpStatusOk || (request.bodyOfEveryStatus && !redirected))
            answer.body = body();
    } catch (const std::bad_alloc&) {
        return;
    }
    if (stopped) {
        answer = {HttpStage::Exchange, 0, ERROR_WINHTTP_OPERATION_CANCELLED, {}};
        return;
    }
    answer.stage = HttpStage::Answered;
    answer.status = code;
}

HttpAnswer Exchange::run(const HttpDetour* detour)
{
    HttpAnswer answer;
    if (!openSession(detour))
        return answer;
    QByteArray address = addressOf(request);
    for (int hop = 0; hop <= limits.redirects; ++hop) {
        const WindowsHttpPlace place = placeOf(address);
        answer.stage = hop == 0 ? HttpStage::Connect : HttpStage::Exchange;
        if (!connect(place))
            return answer;
        answer.stage = hop == 0 ? HttpStage::Request : HttpStage::Exchange;
        if (!openRequest(place))
            return answer;
        answer.stage = HttpStage::Exchange;
        const auto reply = send();
        answer.errorCode = static_cast<int>(reply.error);
        if (!reply.ok)
            return answer;
        if (isTooLong()) {
            answer.errorCode = ERROR_WINHTTP_HEADER_SIZE_OVERFLOW;
            return answer;
        }
        const auto leadsTo = location();
        const QByteArray next = leadsTo ? followedAddress(address, *leadsTo) : QByteArray();
        const bool stepDown = place.secure && next.startsWith("http:");
        if (!leadsTo || (stepDown && !request.stepDownAllowed)) {
            takeAnswer(answer, leadsTo.has_value());
            return answer;
        }
        address = next;
    }
    answer.errorCode = ERROR_WINHTTP_REDIRECT_FAILED;
    return answer;
}

class WindowsHttpTransport : public HttpTransport {
public:
    WindowsHttpTransport(const HttpLimits& bounds, const HttpDetour* way)
        : limits(bounds), detour(way ? std::make_unique<HttpDetour>(*way) : nullptr)
    {
    }

    HttpAnswer get(const HttpRequest& request) override
    {
        return Exchange(request, limits, stopped).run(detour.get());
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
    return std::make_unique<WindowsHttpTransport>(limits, detour);
}
