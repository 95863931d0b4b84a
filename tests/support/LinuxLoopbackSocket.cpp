#include "support/LoopbackSocket.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>

namespace {

int numberOf(loopbacksocket::Socket socket)
{
    return static_cast<int>(socket);
}

} // namespace

namespace loopbacksocket {

Socket bindSomewhere(quint16& port)
{
    const int bound = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    if (bound < 0 || ::bind(bound, generic, length) != 0 || ::getsockname(bound, generic, &length) != 0)
        throw std::runtime_error("no port on the loopback");
    port = ntohs(address.sin_port);
    return bound;
}

void listen(Socket socket, int waiting)
{
    if (::listen(numberOf(socket), waiting) != 0)
        throw std::runtime_error("no listener on the loopback");
}

std::optional<Socket> acceptWithin(Socket listener, int milliseconds)
{
    if (!isReadableWithin(listener, milliseconds))
        return std::nullopt;
    const int accepted = ::accept4(numberOf(listener), nullptr, nullptr, SOCK_CLOEXEC);
    return accepted < 0 ? std::nullopt : std::optional<Socket>(accepted);
}

bool isReadableWithin(Socket socket, int milliseconds)
{
    pollfd watched{numberOf(socket), POLLIN, 0};
    return ::poll(&watched, 1, milliseconds) > 0;
}

qsizetype receive(Socket socket, char* buffer, qsizetype size)
{
    return ::recv(numberOf(socket), buffer, static_cast<size_t>(size), 0);
}

qsizetype peek(Socket socket, char* buffer, qsizetype size)
{
    return ::recv(numberOf(socket), buffer, static_cast<size_t>(size), MSG_PEEK);
}

qsizetype send(Socket socket, const char* bytes, qsizetype count)
{
    return ::send(numberOf(socket), bytes, static_cast<size_t>(count), MSG_NOSIGNAL);
}

void shutDown(Socket socket)
{
    ::shutdown(numberOf(socket), SHUT_RDWR);
}

void close(Socket socket)
{
    ::close(numberOf(socket));
}

// TLS sends without MSG_NOSIGNAL.
void surviveHangUps()
{
    sigset_t pipeSignal;
    sigemptyset(&pipeSignal);
    sigaddset(&pipeSignal, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipeSignal, nullptr);
}

} // namespace loopbacksocket
