#pragma once

#include "support/LoopbackSocket.h"
#include "support/ServedAnswer.h"

#include <atomic>
#include <memory>
#include <optional>

struct ssl_ctx_st;
struct ssl_st;

/// The server's side of one connection on the loopback.
class LoopbackConnection {
public:
    /// @param taken          stays the caller's
    /// @param tunnelContext  of a connection that turns to TLS behind a CONNECT
    LoopbackConnection(loopbacksocket::Socket taken, ssl_ctx_st* context, ssl_ctx_st* tunnelContext,
                       const std::atomic<bool>& stopFlag);

    /// The TLS handshake, where there is one.
    bool greet();
    /// Waits for a whole request head; nothing when the client has left.
    std::optional<ServedRequest> receive();
    /// False when the connection is to be closed.
    bool send(const ServedAnswer& answer);

private:
    bool shakeHands();
    bool asksForTunnel() const;
    bool openTunnel();
    bool sendBytes(const QByteArray& bytes);
    bool sendPiece(const ServedAnswer& answer, const QByteArray& piece);
    bool sendBody(const ServedAnswer& answer);
    qsizetype receiveBytes(char* buffer, int size);
    void waitUntilClientLeaves();

    loopbacksocket::Socket socket;
    std::unique_ptr<ssl_st, void (*)(ssl_st*)> tls;
    ssl_ctx_st* tunnel;
    const std::atomic<bool>& stopping;
};
