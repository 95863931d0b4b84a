#include "support/LoopbackConnection.h"

#include <openssl/ssl.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <string_view>
#include <thread>

namespace {

constexpr int stepMilliseconds = 20;
constexpr qsizetype longestHead = 64 * 1024;
constexpr char endOfHead[] = "\r\n\r\n";

// To a proxy a client says the whole address.
void takeOriginForm(ServedRequest& request)
{
    for (const QByteArray& scheme : {QByteArray("http://"), QByteArray("https://")}) {
        if (!request.target.startsWith(scheme))
            continue;
        const qsizetype path = request.target.indexOf('/', scheme.size());
        request.target = path < 0 ? QByteArray("/") : request.target.mid(path);
        request.askedAsProxy = true;
    }
}

ServedRequest parseHead(const QByteArray& head, bool secure)
{
    ServedRequest request;
    request.secure = secure;
    QList<QByteArray> lines = head.split('\n');
    for (QByteArray& line : lines)
        line = line.trimmed();
    const QList<QByteArray> words = lines.takeFirst().split(' ');
    request.target = words.value(1);
    lines.removeAll(QByteArray());
    request.headers = lines;
    request.host = request.values("Host").value(0);
    takeOriginForm(request);
    return request;
}

} // namespace

LoopbackConnection::LoopbackConnection(loopbacksocket::Socket taken, ssl_ctx_st* context,
                                       ssl_ctx_st* tunnelContext, const std::atomic<bool>& stopFlag)
    : socket(taken), tls(context ? SSL_new(context) : nullptr, SSL_free), tunnel(tunnelContext),
      stopping(stopFlag)
{
}

bool LoopbackConnection::greet()
{
    if (tunnel && asksForTunnel()) {
        tls.reset(SSL_new(tunnel));
        return openTunnel() && shakeHands();
    }
    return !tls || shakeHands();
}

bool LoopbackConnection::shakeHands()
{
    return SSL_set_fd(tls.get(), static_cast<int>(socket)) == 1 && SSL_accept(tls.get()) == 1;
}

bool LoopbackConnection::asksForTunnel() const
{
    char first = 0; // of CONNECT; nothing else begins so
    return loopbacksocket::peek(socket, &first, 1) == 1 && first == 'C';
}

bool LoopbackConnection::openTunnel()
{
    QByteArray head;
    while (!head.endsWith(endOfHead) && head.size() < longestHead) {
        char next = 0;
        if (loopbacksocket::receive(socket, &next, 1) != 1)
            return false;
        head.append(next);
    }
    constexpr std::string_view agreed = "HTTP/1.1 200 Connection established\r\n\r\n";
    const auto length = static_cast<qsizetype>(agreed.size());
    return loopbacksocket::send(socket, agreed.data(), length) == length;
}

// The end of the server must not wait for a client that keeps its connection: a
// socket that another thread shuts down need not wake who reads from it.
qsizetype LoopbackConnection::receiveBytes(char* buffer, int size)
{
    const auto isWaiting = [this] {
        return (tls && SSL_pending(tls.get()) > 0)
               || loopbacksocket::isReadableWithin(socket, stepMilliseconds);
    };
    while (!isWaiting()) {
        if (stopping)
            return 0;
    }
    return tls ? SSL_read(tls.get(), buffer, size) : loopbacksocket::receive(socket, buffer, size);
}

std::optional<ServedRequest> LoopbackConnection::receive()
{
    QByteArray head;
    std::array<char, 4096> buffer;
    while (!head.contains(endOfHead) && head.size() < longestHead) {
        const qsizetype count = receiveBytes(buffer.data(), static_cast<int>(buffer.size()));
        if (count <= 0)
            return std::nullopt;
        head.append(buffer.data(), count);
    }
    return parseHead(head, tls != nullptr);
}

bool LoopbackConnection::sendBytes(const QByteArray& bytes)
{
    constexpr qsizetype largestStep = 1 << 20;
    qsizetype done = 0;
    while (done < bytes.size()) {
        const qsizetype step = std::min(bytes.size() - done, largestStep);
        const char* from = bytes.constData() + done;
        const qsizetype sent = tls ? SSL_write(tls.get(), from, static_cast<int>(step))
                                   : loopbacksocket::send(socket, from, step);
        if (sent <= 0)
            return false;
        done += sent;
    }
    return true;
}

void LoopbackConnection::waitUntilClientLeaves()
{
    while (!stopping && !loopbacksocket::isReadableWithin(socket, stepMilliseconds)) {
    }
}

bool LoopbackConnection::sendPiece(const ServedAnswer& answer, const QByteArray& piece)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(answer.pieceMilliseconds));
    if (answer.framing != ServedAnswer::Framing::Chunked)
        return sendBytes(piece);
    return sendBytes(QByteArray::number(piece.size(), 16) + "\r\n" + piece + "\r\n");
}

bool LoopbackConnection::sendBody(const ServedAnswer& answer)
{
    QByteArray body = answer.body;
    if (answer.breakAfter >= 0)
        body.truncate(answer.breakAfter);
    if (answer.stallAfter >= 0)
        body.truncate(answer.stallAfter);

    const qsizetype step = answer.pieceBytes > 0 ? answer.pieceBytes : std::max<qsizetype>(1, body.size());
    do {
        for (qsizetype from = 0; from < body.size() && !stopping; from += step) {
            if (!sendPiece(answer, body.mid(from, step)))
                return false;
        }
    } while (answer.endless && !stopping);

    if (answer.stallAfter >= 0)
        waitUntilClientLeaves();
    if (answer.breakAfter >= 0 || answer.stallAfter >= 0)
        return false;
    return answer.framing != ServedAnswer::Framing::Chunked || sendBytes("0\r\n\r\n");
}

bool LoopbackConnection::send(const ServedAnswer& answer)
{
    if (!answer.raw.isEmpty() && !sendBytes(answer.raw))
        return false;
    if (answer.silent)
        waitUntilClientLeaves();
    if (answer.silent || answer.dropped || !answer.raw.isEmpty())
        return false;
    const bool goodSoFar = sendBytes(answer.head()) && sendBody(answer);
    const bool lied = answer.claimedLength >= 0;
    return goodSoFar && !lied && answer.framing != ServedAnswer::Framing::UntilClose;
}
