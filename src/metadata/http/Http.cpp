#include "metadata/http/Http.h"

#include "metadata/http/HttpStatus.h"
#include "metadata/http/HttpTransport.h"
#include "metadata/http/ServiceHosts.h"

#include <QDebug>
#include <QUrl>

#include <cstring>

namespace {

constexpr char agentName[] = "TarvelCDRipper/1.0";

QByteArray contactHeader(const char* contact)
{
    return QByteArrayLiteral("User-Agent: ") + agentName + " ( " + contact + " )";
}

bool mayStandInTarget(char byte)
{
    const bool plain =
        (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9');
    return plain || (byte != '\0' && std::strchr("-._~!$&'()*+,;=:@/?%", byte));
}

// The escapes that the text holds already stay as they are.
QByteArray escapedTarget(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    QByteArray target;
    target.reserve(bytes.size() + 1);
    if (!bytes.startsWith('/'))
        target.append('/');
    for (const char byte : bytes) {
        if (mayStandInTarget(byte))
            target.append(byte);
        else
            target.append('%').append(QByteArray(1, byte).toHex().toUpper());
    }
    return target;
}

QString decodedTarget(const QUrl& url)
{
    QString target = url.path(QUrl::FullyDecoded);
    const QString query = url.query();
    if (!query.isEmpty())
        target += QLatin1Char('?') + query;
    return target.isEmpty() ? QStringLiteral("/") : target;
}

QString verbatimTarget(const QString& address, const QUrl& url)
{
    const QString host = url.host(QUrl::FullyDecoded);
    const qsizetype found = address.indexOf(host, 0, Qt::CaseInsensitive);
    const QString target = found < 0 ? decodedTarget(url) : address.mid(found + host.size());
    return target.isEmpty() ? QStringLiteral("/") : target;
}

HttpRequest makeRequest(const QUrl& url, const QString& target, const char* contact)
{
    HttpRequest request;
    request.secure = url.scheme() == QLatin1String("https");
    request.host = url.host(QUrl::FullyDecoded);
    request.target = escapedTarget(target);
    request.agentName = agentName;
    request.extraHeader = contactHeader(contact);
    return request;
}

void logFailure(const HttpAnswer& answer)
{
    switch (answer.stage) {
    case HttpStage::Session:
        qWarning() << "[HTTP] WinHttpOpen failed";
        break;
    case HttpStage::Connect:
        qWarning() << "[HTTP] WinHttpConnect failed";
        break;
    case HttpStage::Request:
        qWarning() << "[HTTP] WinHttpOpenRequest failed";
        break;
    case HttpStage::Exchange:
        qWarning() << "[HTTP] request failed, err=" << answer.errorCode;
        break;
    case HttpStage::Answered:
        break;
    }
}

} // namespace

QByteArray httpGet(const QString& url, int* status)
{
    if (status)
        *status = 0;

    const QUrl address(url);
    const QString target = decodedTarget(address);
    HttpRequest request = makeRequest(address, target, services::contactAddress);
    request.stepDownAllowed = true;
    qDebug().noquote() << "[HTTP] host=" << request.host << "path=" << target;

    const HttpAnswer answer = httpTransport().get(request);
    logFailure(answer);
    if (answer.stage == HttpStage::Exchange || answer.stage == HttpStage::Answered)
        qDebug() << "[HTTP] status=" << answer.status;
    if (status)
        *status = answer.status;
    return answer.status == httpStatusOk ? answer.body : QByteArray();
}

QByteArray gnudbGet(const QString& url)
{
    const QUrl address(url);
    const HttpAnswer answer =
        httpTransport().get(makeRequest(address, decodedTarget(address), services::contactAddress));
    return answer.status == httpStatusOk ? answer.body : QByteArray();
}

QByteArray verbatimGet(const QString& url)
{
    const QUrl address(url);
    HttpRequest request =
        makeRequest(address, verbatimTarget(url, address), services::placeholderContactAddress);
    request.stepDownAllowed = true;
    request.bodyOfEveryStatus = true;
    return httpTransport().get(request).body;
}
