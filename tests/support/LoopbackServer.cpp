#include "support/LoopbackServer.h"

#include "support/LoopbackConnection.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>
#include <utility>

namespace {

constexpr int stepMilliseconds = 20;
constexpr int waitingConnections = 16;

// A client that hangs up must not end the test by a signal from inside TLS.
void blockPipeSignal()
{
    sigset_t pipeSignal;
    sigemptyset(&pipeSignal);
    sigaddset(&pipeSignal, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipeSignal, nullptr);
}

} // namespace

LoopbackServer::LoopbackServer(Handler answerTo, std::shared_ptr<ssl_ctx_st> tls)
    : handler(std::move(answerTo)), context(std::move(tls))
{
    listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    if (listener < 0 || ::bind(listener, generic, length) != 0 || ::listen(listener, waitingConnections) != 0
        || ::getsockname(listener, generic, &length) != 0)
        throw std::runtime_error("no listener on the loopback");
    listeningPort = ntohs(address.sin_port);
    acceptor = std::thread(&LoopbackServer::acceptAll, this);
}

LoopbackServer::~LoopbackServer()
{
    stopping = true;
    acceptor.join();
    {
        const std::lock_guard lock(guard);
        for (const int descriptor : descriptors)
            ::shutdown(descriptor, SHUT_RDWR);
    }
    for (std::thread& thread : connectionThreads)
        thread.join();
    ::close(listener);
}

int LoopbackServer::openConnections() const
{
    const std::lock_guard lock(guard);
    return static_cast<int>(descriptors.size());
}

void LoopbackServer::acceptAll()
{
    while (!stopping) {
        pollfd watched{listener, POLLIN, 0};
        if (::poll(&watched, 1, stepMilliseconds) <= 0)
            continue;
        const int descriptor = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (descriptor < 0)
            continue;
        ++accepted;
        const std::lock_guard lock(guard);
        descriptors.insert(descriptor);
        connectionThreads.emplace_back(&LoopbackServer::serve, this, descriptor);
    }
}

void LoopbackServer::serve(int descriptor)
{
    blockPipeSignal();
    LoopbackConnection connection(descriptor, context.get(), stopping);
    bool open = connection.greet();
    while (open && !stopping) {
        const std::optional<ServedRequest> request = connection.receive();
        open = request && connection.send(handler(*request));
    }
    const std::lock_guard lock(guard);
    descriptors.erase(descriptor);
    ::shutdown(descriptor, SHUT_RDWR);
    ::close(descriptor);
}
