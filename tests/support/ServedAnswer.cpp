#include "support/ServedAnswer.h"

QList<QByteArray> ServedRequest::values(const QByteArray& name) const
{
    QList<QByteArray> found;
    for (const QByteArray& line : headers) {
        const qsizetype colon = line.indexOf(':');
        if (line.left(colon).compare(name, Qt::CaseInsensitive) == 0)
            found.append(line.mid(colon + 1).trimmed());
    }
    return found;
}

QByteArray ServedAnswer::head() const
{
    QByteArray text = "HTTP/1.1 " + QByteArray::number(status) + " Loopback\r\n";
    for (const QByteArray& line : headers)
        text += line + "\r\n";
    const qint64 length = claimedLength >= 0 ? claimedLength : body.size();
    switch (framing) {
    case Framing::Length:
        text += "Content-Length: " + QByteArray::number(length) + "\r\n";
        break;
    case Framing::Chunked:
        text += "Transfer-Encoding: chunked\r\n";
        break;
    case Framing::UntilClose:
        text += "Connection: close\r\n";
        break;
    }
    return text + "\r\n";
}

namespace {

ServedAnswer withType(const QByteArray& type, const QByteArray& body)
{
    ServedAnswer answer;
    answer.headers.append("Content-Type: " + type);
    answer.body = body;
    return answer;
}

} // namespace

ServedAnswer page(const QByteArray& body)
{
    return withType("text/plain; charset=UTF-8", body);
}

ServedAnswer json(const QByteArray& body)
{
    return withType("application/json; charset=utf-8", body);
}

ServedAnswer image(const QByteArray& body)
{
    return withType("image/jpeg", body);
}

ServedAnswer errorPage(int status)
{
    const QByteArray number = QByteArray::number(status);
    ServedAnswer answer = withType(
        "text/html", "<!doctype html>\n<html lang=en>\n<title>" + number + " Error</title>\n<h1>Error "
                         + number + "</h1>\n<p>The server cannot answer this request.</p>\n</html>\n");
    answer.status = status;
    return answer;
}

ServedAnswer silence()
{
    ServedAnswer answer;
    answer.silent = true;
    return answer;
}

ServedAnswer redirect(const QByteArray& location, int status)
{
    ServedAnswer answer = errorPage(status);
    answer.headers.append("Location: " + location);
    return answer;
}
