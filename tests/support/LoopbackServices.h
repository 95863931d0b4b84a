#pragma once

#include "metadata/http/HttpTransport.h"
#include "support/LoopbackServer.h"
#include "support/ServedAnswer.h"
#include "support/TestAuthority.h"

#include <QByteArray>
#include <QList>
#include <QMap>

#include <memory>
#include <mutex>

/// Plays the lookup services on 127.0.0.1, over HTTP and over HTTPS with a
/// certificate authority of its own. While it lives, every request of this
/// process goes through the program's own transport to here, and nothing leaves
/// the machine. What no answer was given for is answered with a 404 page.
///
/// Over HTTPS it proves to be the services, "images.test", "a.test" and "b.test".
/// "expired.test" shows a certificate that has run out, "stranger.test" one of an
/// unknown authority, and any other host one for somebody else.
class LoopbackServices {
public:
    explicit LoopbackServices(const HttpLimits& limits = {});
    ~LoopbackServices();

    /// Answers GET requests to the host whose target begins so. Of several
    /// matches the one given last counts.
    void on(const QByteArray& host, const QByteArray& targetStart, const ServedAnswer& answer);
    /// The same with an answer for each request in turn; the last one stays.
    void onInTurn(const QByteArray& host, const QByteArray& targetStart, const QList<ServedAnswer>& answers);

    /// All requests so far, in the order of their arrival.
    QList<ServedRequest> requests() const;
    void forgetRequests();
    /// The targets of the requests to one host.
    QList<QByteArray> targets(const QByteArray& host) const;
    int connections() const { return plain->connections() + secure->connections(); }
    int openConnections() const { return plain->openConnections() + secure->openConnections(); }

    HttpTransport& transport() { return *ownTransport; }
    /// Where a transport of the test's own would find these services.
    const HttpDetour& detour() const { return way; }

private:
    struct Route {
        QByteArray host;
        QByteArray targetStart;
        QList<ServedAnswer> answers;
        qsizetype next = 0;
    };

    ServedAnswer answerTo(const ServedRequest& request);

    TestAuthority strangeAuthority;
    QMap<QByteArray, std::shared_ptr<ssl_ctx_st>> specialContexts; ///< by the host that shows them
    mutable std::mutex guard;
    QList<Route> routes;          ///< guarded
    QList<ServedRequest> arrived; ///< guarded
    HttpDetour way;
    std::unique_ptr<LoopbackServer> plain;
    std::unique_ptr<LoopbackServer> secure;
    std::unique_ptr<HttpTransport> ownTransport;
    std::unique_ptr<HttpTransportOverride> inPlace;
};

namespace hosts {

inline constexpr char musicBrainz[] = "musicbrainz.org";
inline constexpr char coverArtArchive[] = "coverartarchive.org";
inline constexpr char discogs[] = "api.discogs.com";
inline constexpr char iTunes[] = "itunes.apple.com";
inline constexpr char gnuDb[] = "gnudb.gnudb.org";
inline constexpr char accurateRip[] = "www.accuraterip.com";
inline constexpr char images[] = "images.test"; ///< where answers may say that a picture lies

} // namespace hosts
