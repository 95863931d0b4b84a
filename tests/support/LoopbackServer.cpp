#include "support/LoopbackServer.h"

#include "support/LoopbackConnection.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int stepMilliseconds = 20;

} // namespace

LoopbackServer::LoopbackServer(Handler answerTo, std::shared_ptr<ssl_ctx_st> tls,
                               std::shared_ptr<ssl_ctx_st> tunnelTls)
    : handler(std::move(answerTo)), context(std::move(tls)), tunnelContext(std::move(tunnelTls))
{
    listener = loopbacksocket::bindSomewhere(listeningPort);
    loopbacksocket::listen(listener);
    acceptor = std::thread(&LoopbackServer::acceptAll, this);
}

LoopbackServer::~LoopbackServer()
{
    stopping = true;
    acceptor.join();
    {
        const std::lock_guard lock(guard);
        for (const Socket socket : sockets)
            loopbacksocket::shutDown(socket);
    }
    for (std::thread& thread : connectionThreads)
        thread.join();
    loopbacksocket::close(listener);
}

int LoopbackServer::openConnections() const
{
    const std::lock_guard lock(guard);
    return static_cast<int>(sockets.size());
}

void LoopbackServer::acceptAll()
{
    while (!stopping) {
        joinEnded();
        const auto socket = loopbacksocket::acceptWithin(listener, stepMilliseconds);
        if (!socket)
            continue;
        ++accepted;
        const std::lock_guard lock(guard);
        sockets.insert(*socket);
        connectionThreads.emplace_back(&LoopbackServer::serve, this, *socket);
    }
}

// An ended thread keeps its stack until then: those of a long run would not fit.
void LoopbackServer::joinEnded()
{
    std::vector<std::thread::id> leaving;
    {
        const std::lock_guard lock(guard);
        leaving.swap(ended);
    }
    for (const std::thread::id id : leaving) {
        const auto thread = std::find_if(connectionThreads.begin(), connectionThreads.end(),
                                         [id](const std::thread& one) { return one.get_id() == id; });
        thread->join();
        connectionThreads.erase(thread);
    }
}

void LoopbackServer::serve(Socket socket)
{
    loopbacksocket::surviveHangUps();
    LoopbackConnection connection(socket, context.get(), tunnelContext.get(), stopping);
    bool open = connection.greet();
    while (open && !stopping) {
        const std::optional<ServedRequest> request = connection.receive();
        open = request && connection.send(handler(*request));
    }
    const std::lock_guard lock(guard);
    sockets.erase(socket);
    ended.push_back(std::this_thread::get_id());
    loopbacksocket::shutDown(socket);
    loopbacksocket::close(socket);
}
