#include "rip/RunGuard.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusUnixFileDescriptor>

#include <sys/resource.h>
#include <unistd.h>

namespace {

constexpr int raisedNice = -10;
constexpr int busTimeoutMs = 1000;

// A nice value is one thread's. The main thread rises with the running one, or a
// busy encoder would keep the window waiting for a processor. Without the right
// to raise them the calls change nothing. Sleep stays inhibited for as long as
// the descriptor is held.
class LinuxRunGuard : public RunGuard {
public:
    void begin() override
    {
        niceBefore = getpriority(PRIO_PROCESS, 0);
        mainNiceBefore = getpriority(PRIO_PROCESS, mainThread());
        setpriority(PRIO_PROCESS, mainThread(), raisedNice);
        setpriority(PRIO_PROCESS, 0, raisedNice);
        inhibitSleep();
    }

    void end() override
    {
        sleepInhibitor = QDBusUnixFileDescriptor();
        setpriority(PRIO_PROCESS, mainThread(), mainNiceBefore);
        setpriority(PRIO_PROCESS, 0, niceBefore);
    }

private:
    static id_t mainThread() { return static_cast<id_t>(getpid()); }

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
    int mainNiceBefore = 0;
    QDBusUnixFileDescriptor sleepInhibitor;
};

} // namespace

std::unique_ptr<RunGuard> makeRunGuard()
{
    return std::make_unique<LinuxRunGuard>();
}
