#include "metadata/http/WindowsHttpAddress.h"
#include "metadata/http/HttpAddress.h"

#include <QList>
#include <QUrl>

#include <algorithm>

namespace {

constexpr char authorityMark[] = "://";

// The escapes that are there stay as they are, to the letter, which QUrl would write
// its own way: a server that signs its addresses would not know its own.
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

/// The scheme in small letters, where there is one.
QByteArray schemeOf(const QByteArray& address)
{
    const qsizetype end = address.indexOf(':');
    const QByteArray scheme = address.left(std::max<qsizetype>(end, 0)).toLower();
    const bool isScheme = std::ranges::all_of(scheme, [](char letter) {
        return (letter >= 'a' && letter <= 'z') || (letter >= '0' && letter <= '9') || letter == '+'
               || letter == '-' || letter == '.';
    });
    return isScheme ? scheme : QByteArray();
}

/// Where the path begins, or what stands in its place.
qsizetype pathStart(const QByteArray& address)
{
    qsizetype place = address.indexOf(authorityMark) + 3;
    while (place < address.size() && !QByteArray("/?#").contains(address[place]))
        ++place;
    return place;
}

QByteArray withoutDots(const QByteArray& path)
{
    QList<QByteArray> kept;
    const QList<QByteArray> parts = path.split('/');
    for (qsizetype i = 0; i < parts.size(); ++i) {
        const bool last = i + 1 == parts.size();
        const bool up = parts[i] == "..";
        if (up && kept.size() > 1)
            kept.removeLast();
        if (!up && parts[i] != ".")
            kept.append(parts[i]);
        else if (last)
            kept.append(QByteArray());
    }
    return kept.join('/');
}

QByteArray mergedPath(const QByteArray& base, const QByteArray& location)
{
    const qsizetype queryStart = location.indexOf('?');
    const QByteArray path = queryStart < 0 ? location : location.left(queryStart);
    const QByteArray folder = path.startsWith('/') ? QByteArray() : base.left(base.lastIndexOf('/') + 1);
    return withoutDots(folder + path) + location.mid(path.size());
}

} // namespace

WindowsHttpPlace placeOf(const QByteArray& address)
{
    const QByteArray scheme = schemeOf(address);
    const QUrl url = QUrl::fromEncoded(address.left(pathStart(address)));
    if ((scheme != "http" && scheme != "https") || !url.isValid() || url.host().isEmpty())
        return {};
    const bool secure = scheme == "https";
    QByteArray target = address.mid(pathStart(address));
    target.truncate(target.contains('#') ? target.indexOf('#') : target.size());
    if (!target.startsWith('/'))
        target.prepend('/');
    return {secure, url.host(QUrl::FullyEncoded), static_cast<quint16>(url.port(secure ? 443 : 80)), target};
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
    const QByteArray wanted = escaped(location);
    const QByteArray scheme = schemeOf(from);
    QByteArray next;
    if (!schemeOf(wanted).isEmpty()) {
        next = wanted;
    } else if (wanted.startsWith("//")) {
        next = scheme + ':' + wanted;
    } else {
        const qsizetype start = pathStart(from);
        QByteArray path = from.mid(start);
        path.truncate(std::min({path.contains('?') ? path.indexOf('?') : path.size(),
                                path.contains('#') ? path.indexOf('#') : path.size()}));
        next = from.left(start)
               + (wanted.startsWith('?') || wanted.isEmpty() ? path + wanted : mergedPath(path, wanted));
    }
    const WindowsHttpPlace place = placeOf(next);
    if (place.host.isEmpty())
        return {};
    const qsizetype start = pathStart(next);
    const QByteArray authority = next.mid(next.indexOf(authorityMark), start - next.indexOf(authorityMark));
    const bool escapedHost = authority.contains('%');
    return schemeOf(next) + (escapedHost ? authorityMark + place.host.toLatin1() : authority)
           + next.mid(start);
}
