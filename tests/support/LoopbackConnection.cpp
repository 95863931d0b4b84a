#include "support/LoopbackConnection.h"

#include <openssl/ssl.h>

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <thread>

namespace {

constexpr int stepMilliseconds = 20;
constexpr qsizetype longestHead = 64 * 1024;

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
    return request;
}

} // namespace

LoopbackConnection::LoopbackConnection(int socket, ssl_ctx_st* context, const std::atomic<bool>& stopFlag)
    : descriptor(socket), tls(context ? SSL_new(context) : nullptr, SSL_free), stopping(stopFlag)
{
}

bool LoopbackConnection::greet()
{
    return !tls || (SSL_set_fd(tls.get(), descriptor) == 1 && SSL_accept(tls.get()) == 1);
}

qsizetype LoopbackConnection::receiveBytes(char* buffer, int size)
{
    return tls ? SSL_read(tls.get(), buffer, size) : ::recv(descriptor, buffer, static_cast<size_t>(size), 0);
}

std::optional<ServedRequest> LoopbackConnection::receive()
{
    QByteArray head;
    std::array<char, 4096> buffer;
    while (!head.contains("\r\n\r\n") && head.size() < longestHead) {
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
                                   : ::send(descriptor, from, static_cast<size_t>(step), MSG_NOSIGNAL);
        if (sent <= 0)
            return false;
        done += sent;
    }
    return true;
}

void LoopbackConnection::waitUntilClientLeaves()
{
    pollfd watched{descriptor, POLLIN, 0};
    while (!stopping && ::poll(&watched, 1, stepMilliseconds) == 0) {
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
