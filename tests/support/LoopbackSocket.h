#pragma once

#include <QtGlobal>

#include <optional>

/// The few calls on sockets of this machine that differ between the systems.
namespace loopbacksocket {

using Socket = qintptr;

/// A socket on 127.0.0.1 at a port that was free, where nobody listens yet; throws
/// when there is none.
Socket bindSomewhere(quint16& port);
/// @param waiting  how many connections may wait to be accepted, besides one
void listen(Socket socket, int waiting = 16);
/// The next connection, when one comes within the time.
std::optional<Socket> acceptWithin(Socket listener, int milliseconds);
/// Whether there is something to read, the other side's end included.
bool isReadableWithin(Socket socket, int milliseconds);

/// Bytes, 0 at the end, or negative.
qsizetype receive(Socket socket, char* buffer, qsizetype size);
/// The same, and leaves them to be received again.
qsizetype peek(Socket socket, char* buffer, qsizetype size);
qsizetype send(Socket socket, const char* bytes, qsizetype count);

void shutDown(Socket socket);
void close(Socket socket);

/// To be called on each thread that sends: a client that hangs up must not end the
/// process.
void surviveHangUps();

} // namespace loopbacksocket
