#pragma once

#include "base/ServiceOverride.h"

#include <QByteArray>
#include <QString>

#include <memory>

/// One GET request in the form in which it leaves.
struct HttpRequest {
    bool secure = false;            ///< https on port 443, else http on port 80
    QString host;                   ///< fully decoded, without a port
    QByteArray target = "/";        ///< begins with a slash and holds only what may stand in a request line
    QByteArray agentName;           ///< sent as the first User-Agent line
    QByteArray extraHeader;         ///< a whole header line, sent beside the agent name
    bool stepDownAllowed = false;   ///< follow a redirect from https to http, too
    bool bodyOfEveryStatus = false; ///< false: the body of another status than 200 is not fetched
};

/// How far a request came.
enum class HttpStage {
    Session,  ///< no session could be opened
    Connect,  ///< the host is none that could be connected to
    Request,  ///< the request could not be put together
    Exchange, ///< sent in vain: no response head came in
    Answered, ///< a response head came in; the body is as much as arrived
};

struct HttpAnswer {
    HttpStage stage = HttpStage::Session;
    int status = 0;    ///< 0 unless answered
    int errorCode = 0; ///< the platform's own number for a failed exchange
    QByteArray body;
};

/// The bounds of a request. The program's own by default; tests shorten them.
struct HttpLimits {
    int connectMilliseconds = 20'000; ///< name, connection and TLS together
    int silenceMilliseconds = 30'000; ///< without a byte, before or within the answer
    int redirects = 10;
    qsizetype headBytes = 256 * 1024;       ///< a longer response head is no answer
    qsizetype bodyBytes = 64 * 1024 * 1024; ///< an endless body ends here, as one that breaks off
};

/// Leads every connection of a transport to this machine: a test's seam. The
/// addresses, the TLS checks and all else stay as they are. On Windows all of it goes
/// to the plain port as to a proxy, and the system's authorities stay in force.
struct HttpDetour {
    quint16 plainPort = 0;        ///< on 127.0.0.1, for what would go to port 80
    quint16 securePort = 0;       ///< on 127.0.0.1, for what would go to port 443
    QString certificateAuthority; ///< PEM file that takes the place of the system's authorities
};

/// Sends a GET request and blocks until it has ended. Calls may come from any
/// thread and share nothing: no connection, cookie or cache outlives one. The
/// certificate of a secure host is always verified.
class HttpTransport {
public:
    virtual ~HttpTransport() = default;

    virtual HttpAnswer get(const HttpRequest& request) = 0;
    /// Ends the requests under way within a fraction of a second and every later
    /// one at once, as exchanges that failed. For the end of the program.
    virtual void stop() = 0;
    /// Who makes request after request asks this in between.
    virtual bool isStopped() const { return false; }
};

/// The transport in use; the machine's own unless a test has put another there.
HttpTransport& httpTransport();

/// Puts another transport in place for its lifetime; while no request is under way.
using HttpTransportOverride = ServiceOverride<HttpTransport>;

/// The transport of the machine this was built for.
/// @param detour  null for the real network
std::unique_ptr<HttpTransport> makeHttpTransport(const HttpLimits& limits = {},
                                                 const HttpDetour* detour = nullptr);
