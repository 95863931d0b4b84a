#include "support/LoopbackSocket.h"

#include <winsock2.h>

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace {

SOCKET handleOf(loopbacksocket::Socket socket)
{
    return static_cast<SOCKET>(socket);
}

int lengthOf(qsizetype count)
{
    return static_cast<int>(std::min<qsizetype>(count, std::numeric_limits<int>::max()));
}

void startSockets()
{
    static const bool started = [] {
        WSADATA data;
        return WSAStartup(MAKEWORD(2, 2), &data) == 0;
    }();
    if (!started)
        throw std::runtime_error("no sockets");
}

} // namespace

namespace loopbacksocket {

Socket bindSomewhere(quint16& port)
{
    startSockets();
    const SOCKET bound = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int length = sizeof address;
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    if (bound == INVALID_SOCKET || ::bind(bound, generic, length) != 0
        || ::getsockname(bound, generic, &length) != 0)
        throw std::runtime_error("no port on the loopback");
    port = ntohs(address.sin_port);
    return static_cast<Socket>(bound);
}

void listen(Socket socket, int waiting)
{
    if (::listen(handleOf(socket), waiting) != 0)
        throw std::runtime_error("no listener on the loopback");
}

std::optional<Socket> acceptWithin(Socket listener, int milliseconds)
{
    if (!isReadableWithin(listener, milliseconds))
        return std::nullopt;
    const SOCKET accepted = ::accept(handleOf(listener), nullptr, nullptr);
    return accepted == INVALID_SOCKET ? std::nullopt : std::optional<Socket>(static_cast<Socket>(accepted));
}

bool isReadableWithin(Socket socket, int milliseconds)
{
    WSAPOLLFD watched{handleOf(socket), POLLRDNORM, 0};
    return ::WSAPoll(&watched, 1, milliseconds) > 0;
}

qsizetype receive(Socket socket, char* buffer, qsizetype size)
{
    return ::recv(handleOf(socket), buffer, lengthOf(size), 0);
}

qsizetype peek(Socket socket, char* buffer, qsizetype size)
{
    return ::recv(handleOf(socket), buffer, lengthOf(size), MSG_PEEK);
}

qsizetype send(Socket socket, const char* bytes, qsizetype count)
{
    return ::send(handleOf(socket), bytes, lengthOf(count), 0);
}

void shutDown(Socket socket)
{
    ::shutdown(handleOf(socket), SD_BOTH);
}

void close(Socket socket)
{
    ::closesocket(handleOf(socket));
}

void surviveHangUps() {}

} // namespace loopbacksocket
