#include "support/LoopbackServices.h"

#include "support/DetourForm.h"
#include "support/OwnCopy.h"
#include "support/TrustedAuthority.h"

#include <openssl/ssl.h>

#include <algorithm>

namespace {

constexpr long oneHour = 3600;

// Shows the client another certificate where the host's name asks for one.
int chooseCertificate(SSL* connection, int*, void* argument)
{
    const auto& special = *static_cast<const QMap<QByteArray, std::shared_ptr<ssl_ctx_st>>*>(argument);
    const char* name = SSL_get_servername(connection, TLSEXT_NAMETYPE_host_name);
    if (const auto found = special.find(name); found != special.end())
        SSL_set_SSL_CTX(connection, found->get());
    return SSL_TLSEXT_ERR_OK;
}

// A process that has once looked at the machine's authorities need not see a new one.
const TestAuthority& trustedAuthority()
{
    static const TestAuthority authority;
    static const TrustedAuthority trust(authority.certificateFile());
    return authority;
}

} // namespace

LoopbackServices::LoopbackServices(const HttpLimits& limits)
{
    const TestAuthority& authority = trustedAuthority();
    specialContexts["expired.test"] = authority.makeServerContext({"expired.test"}, -oneHour);
    specialContexts["stranger.test"] = strangeAuthority.makeServerContext({"stranger.test"});
    const auto context = authority.makeServerContext({hosts::musicBrainz, hosts::coverArtArchive,
                                                      hosts::discogs, hosts::iTunes, hosts::gnuDb,
                                                      hosts::accurateRip, hosts::images, "a.test", "b.test"});
    SSL_CTX_set_tlsext_servername_callback(context.get(), chooseCertificate);
    SSL_CTX_set_tlsext_servername_arg(context.get(), &specialContexts);

    const auto handler = [this](const ServedRequest& request) { return answerTo(request); };
    plain = std::make_unique<LoopbackServer>(handler, nullptr, detourIsAProxy() ? context : nullptr);
    secure = std::make_unique<LoopbackServer>(handler, context);
    way = {plain->port(), secure->port(), authority.certificateFile()};
    ownTransport = makeHttpTransport(limits, &way);
    inPlace = std::make_unique<HttpTransportOverride>(*ownTransport);
}

LoopbackServices::~LoopbackServices() = default;

void LoopbackServices::on(const QByteArray& host, const QByteArray& targetStart, const ServedAnswer& answer)
{
    onInTurn(host, targetStart, {answer});
}

void LoopbackServices::onInTurn(const QByteArray& host, const QByteArray& targetStart,
                                const QList<ServedAnswer>& answers)
{
    const std::lock_guard lock(guard);
    routes.prepend({host, targetStart, answers});
}

QList<ServedRequest> LoopbackServices::requests() const
{
    const std::lock_guard lock(guard);
    return ownCopy(arrived);
}

void LoopbackServices::forgetRequests()
{
    const std::lock_guard lock(guard);
    arrived = {};
}

QList<QByteArray> LoopbackServices::targets(const QByteArray& host) const
{
    QList<QByteArray> found;
    for (const ServedRequest& request : requests()) {
        if (request.host == host)
            found.append(request.target);
    }
    return found;
}

ServedAnswer LoopbackServices::answerTo(const ServedRequest& request)
{
    const std::lock_guard lock(guard);
    arrived.append(request);
    for (Route& route : routes) {
        if (route.host != request.host || !request.target.startsWith(route.targetStart))
            continue;
        const qsizetype turn = std::min(route.next++, route.answers.size() - 1);
        return route.answers[turn];
    }
    return errorPage(404);
}
