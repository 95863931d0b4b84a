#include "metadata/http/WindowsHttpAddress.h"
#include "metadata/http/HttpAddress.h"

#include <QUrl>

namespace {

// The escapes that are there stay as they are, to the letter.
QByteArray escaped(const QByteArray& text)
{
    QByteArray safe;
    for (const char byte : text) {
        if (byte > ' ' && byte < 0x7F)
            safe.append(byte);
        else
            safe.append('%').append(QByteArray(1, byte).toHex().toUpper());
    }
    return safe;
}

/// Where the path begins, or what stands in its place.
qsizetype pathStart(const QByteArray& address)
{
    qsizetype place = address.indexOf("://") + 3;
    while (place < address.size() && !QByteArray("/?#").contains(address[place]))
        ++place;
    return place;
}

} // namespace

WindowsHttpPlace placeOf(const QByteArray& address)
{
    const qsizetype start = pathStart(address);
    const QUrl server = QUrl::fromEncoded(address.left(start));
    const bool secure = server.scheme() == QLatin1String("https");
    if (!server.isValid() || (!secure && server.scheme() != QLatin1String("http")) || server.host().isEmpty())
        return {};
    QByteArray target = address.mid(start);
    target.truncate(target.contains('#') ? target.indexOf('#') : target.size());
    if (!target.startsWith('/'))
        target.prepend('/');
    const int port = server.port(secure ? 443 : 80);
    return {secure, server.host(QUrl::FullyEncoded), static_cast<quint16>(port), target};
}

QByteArray addressOf(const HttpRequest& request)
{
    QUrl server;
    server.setScheme(request.secure ? QStringLiteral("https") : QStringLiteral("http"));
    server.setHost(request.host, QUrl::StrictMode);
    return server.host().isEmpty() ? QByteArray() : server.toEncoded() + request.target;
}

QByteArray followedAddress(const QByteArray& from, const QByteArray& location)
{
    const QUrl next = QUrl::fromEncoded(from).resolved(QUrl::fromEncoded(escaped(location)));
    const QByteArray address = next.toEncoded();
    return placeOf(address).host.isEmpty() ? QByteArray() : address;
}
