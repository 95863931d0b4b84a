#pragma once

#include "support/LoopbackSocket.h"
#include "support/ServedAnswer.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

struct ssl_ctx_st;

/// A listener on 127.0.0.1 that speaks HTTP/1.1, over TLS when it is given a
/// context. Connections are kept open as long as the client wants them, each on
/// a thread of its own; the destructor ends them all.
class LoopbackServer {
public:
    using Handler = std::function<ServedAnswer(const ServedRequest&)>;

    /// @param answerTo   called from the connections' threads
    /// @param tunnelTls  for a server without TLS that opens tunnels like a proxy
    LoopbackServer(Handler answerTo, std::shared_ptr<ssl_ctx_st> tls,
                   std::shared_ptr<ssl_ctx_st> tunnelTls = nullptr);
    ~LoopbackServer();
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    quint16 port() const { return listeningPort; }
    int connections() const { return accepted; }
    /// Connections that have not been closed by the client.
    int openConnections() const;

private:
    using Socket = loopbacksocket::Socket;

    void acceptAll();
    void serve(Socket socket);
    void joinEnded();

    Handler handler;
    std::shared_ptr<ssl_ctx_st> context;
    std::shared_ptr<ssl_ctx_st> tunnelContext;
    Socket listener;
    quint16 listeningPort = 0;
    std::atomic<bool> stopping = false;
    std::atomic<int> accepted = 0;
    mutable std::mutex guard;
    std::set<Socket> sockets;                   ///< guarded
    std::vector<std::thread::id> ended;         ///< guarded; threads that have closed their connection
    std::vector<std::thread> connectionThreads; ///< of the accepting thread alone
    std::thread acceptor;
};
