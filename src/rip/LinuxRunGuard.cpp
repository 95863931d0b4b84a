#include "rip/RunGuard.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusUnixFileDescriptor>

#include <sys/resource.h>

namespace {

constexpr int raisedNice = -10;
constexpr int busTimeoutMs = 1000;

// The nice value is the calling thread's; without the right to raise it the call
// changes nothing. Sleep stays inhibited for as long as the descriptor is held.
class LinuxRunGuard : public RunGuard {
public:
    void begin() override
    {
        niceBefore = getpriority(PRIO_PROCESS, 0);
        setpriority(PRIO_PROCESS, 0, raisedNice);
        inhibitSleep();
    }

    void end() override
    {
        sleepInhibitor = QDBusUnixFileDescriptor();
        setpriority(PRIO_PROCESS, 0, niceBefore);
    }

private:
    void inhibitSleep()
    {
        const QDBusConnection bus = QDBusConnection::systemBus();
        if (!bus.isConnected())
            return;
        QDBusMessage call = QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
            QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("Inhibit"));
        call << QStringLiteral("sleep:idle") << QStringLiteral("Tarvel CD Ripper")
             << QStringLiteral("A disc is being copied") << QStringLiteral("block");
        const QDBusReply<QDBusUnixFileDescriptor> reply = bus.call(call, QDBus::Block, busTimeoutMs);
        if (reply.isValid())
            sleepInhibitor = reply.value();
    }

    int niceBefore = 0;
    QDBusUnixFileDescriptor sleepInhibitor;
};

} // namespace

std::unique_ptr<RunGuard> makeRunGuard()
{
    return std::make_unique<LinuxRunGuard>();
}
