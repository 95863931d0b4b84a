#include "support/Tool.h"

#include <winsock2.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <algorithm>

namespace {

/// A connection to the helper that runs programs of the machine around Wine, which
/// programs in it cannot start themselves. TARVEL_TOOL_PORT names its port.
class HelperConnection {
public:
    HelperConnection()
    {
        WSADATA data;
        WSAStartup(MAKEWORD(2, 2), &data);
        handle = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(static_cast<u_short>(qEnvironmentVariableIntValue("TARVEL_TOOL_PORT")));
        connected = ::connect(handle, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    }
    ~HelperConnection()
    {
        ::closesocket(handle);
        WSACleanup();
    }
    HelperConnection(const HelperConnection&) = delete;
    HelperConnection& operator=(const HelperConnection&) = delete;

    bool isThere() const { return connected; }

    void send(const QByteArray& bytes)
    {
        for (qsizetype done = 0; done < bytes.size();) {
            const int sent =
                ::send(handle, bytes.constData() + done, static_cast<int>(bytes.size() - done), 0);
            if (sent <= 0)
                return;
            done += sent;
        }
    }

    QByteArray readAll()
    {
        QByteArray all;
        char buffer[65536];
        int count = 0;
        while ((count = ::recv(handle, buffer, sizeof buffer, 0)) > 0)
            all.append(buffer, count);
        return all;
    }

private:
    SOCKET handle = INVALID_SOCKET;
    bool connected = false;
};

// Wine shows the machine's files as drive Z.
QString outsideWine(QString argument)
{
    return argument.replace(QStringLiteral("Z:/"), QStringLiteral("/"), Qt::CaseInsensitive);
}

} // namespace

bool toolsShareOurLibrary()
{
    return false;
}

ToolResult runTool(const QString& program, const QStringList& arguments)
{
    HelperConnection helper;
    if (!helper.isThere())
        return {-1, {}, "no helper listens at TARVEL_TOOL_PORT"};
    QStringList command{program};
    std::ranges::transform(arguments, std::back_inserter(command), outsideWine);
    helper.send(QJsonDocument(QJsonArray::fromStringList(command)).toJson(QJsonDocument::Compact) + '\n');
    const QJsonObject answer = QJsonDocument::fromJson(helper.readAll()).object();
    const auto bytes = [&answer](const char* name) {
        return QByteArray::fromBase64(answer.value(QLatin1String(name)).toString().toLatin1());
    };
    return {answer.value(QLatin1String("exitCode")).toInt(-1), bytes("output"), bytes("errors")};
}
