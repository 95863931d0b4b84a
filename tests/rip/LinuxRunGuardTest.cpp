// What a run asks of the system, and that all of it is taken back: the calls that set
// a nice value, and a login manager on a bus of the test's own.

#include "rip/RunGuard.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServer>
#include <QDBusUnixFileDescriptor>
#include <QDBusVirtualObject>
#include <QTest>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <functional>
#include <map>
#include <thread>
#include <utility>

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

constexpr char busName[] = "played system bus";

/// Takes the place of the system's nice values for its lifetime.
struct PlayedNice {
    static inline PlayedNice* active = nullptr;

    PlayedNice() { active = this; }
    ~PlayedNice() { active = nullptr; }

    std::map<id_t, int> ofThread;
    bool refused = false;
};

/// Hands out one end of a pipe, as long as which is held by anybody the other tells
/// of no end.
class LoginManager : public QDBusVirtualObject {
public:
    ~LoginManager() override { ::close(keptEnd); }

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& from) override
    {
        std::array<int, 2> ends{-1, -1};
        if (::pipe2(ends.data(), O_CLOEXEC) != 0)
            return false;
        ::close(std::exchange(keptEnd, ends[0]));
        const QDBusUnixFileDescriptor handedOut(ends[1]);
        ::close(ends[1]);
        const QVariantList asked = message.arguments();
        request = QStringList{message.path(), message.interface(), message.member(),
                              asked.value(0).toString(), asked.value(3).toString()};
        return from.send(message.createReply(QVariant::fromValue(handedOut)));
    }

    bool inhibitsSleep() const
    {
        pollfd end{keptEnd, 0, 0};
        return keptEnd >= 0 && ::poll(&end, 1, 0) == 0;
    }

    QStringList request;

private:
    int keptEnd = -1;
};

/// A system bus with nobody on it but a login manager.
class PlayedBus {
public:
    PlayedBus()
    {
        QObject::connect(&server, &QDBusServer::newConnection, [this](QDBusConnection connection) {
            isReached = connection.registerVirtualObject(QStringLiteral("/org/freedesktop/login1"), &manager);
        });
        QDBusConnection::connectToPeer(server.address(), QLatin1String(busName));
        EXPECT_TRUE(QTest::qWaitFor([this] { return isReached; }, 60000));
    }

    ~PlayedBus() { QDBusConnection::disconnectFromPeer(QLatin1String(busName)); }

    LoginManager manager;

private:
    QDBusServer server;
    bool isReached = false;
};

/// On a thread of its own, as a rip does, while this one answers on the bus.
void onItsOwnThread(const std::function<void()>& act)
{
    std::atomic<bool> ended = false;
    std::thread thread([&] {
        act();
        ended = true;
    });
    EXPECT_TRUE(QTest::qWaitFor([&ended] { return ended.load(); }, 60000));
    thread.join();
}

id_t threadOf(id_t who)
{
    return who != 0 ? who : static_cast<id_t>(gettid());
}

} // namespace

extern "C" {

int getpriority(__priority_which_t which, id_t who) noexcept
{
    static const auto next = reinterpret_cast<decltype(&getpriority)>(dlsym(RTLD_NEXT, "getpriority"));
    return PlayedNice::active ? PlayedNice::active->ofThread[threadOf(who)] : next(which, who);
}

int setpriority(__priority_which_t which, id_t who, int value) noexcept
{
    static const auto next = reinterpret_cast<decltype(&setpriority)>(dlsym(RTLD_NEXT, "setpriority"));
    if (!PlayedNice::active)
        return next(which, who, value);
    if (PlayedNice::active->refused) {
        errno = EACCES;
        return -1;
    }
    PlayedNice::active->ofThread[threadOf(who)] = value;
    return 0;
}

} // extern "C"

// In front of the library's own: a connection that leads nowhere while no bus is played.
QDBusConnection QDBusConnection::systemBus()
{
    return QDBusConnection(QLatin1String(busName));
}

TEST(LinuxRunGuard, TheRunAndTheWindowAreRaisedAndPutBackWithoutABus)
{
    PlayedNice nice;
    const auto window = static_cast<id_t>(getpid());
    const auto guard = makeRunGuard();
    onItsOwnThread([&] {
        const auto run = static_cast<id_t>(gettid());
        nice.ofThread = {{window, 3}, {run, 5}};
        guard->begin();
        EXPECT_EQ(nice.ofThread, (std::map<id_t, int>{{window, -10}, {run, -10}}));
        guard->end();
        EXPECT_EQ(nice.ofThread, (std::map<id_t, int>{{window, 3}, {run, 5}}));
    });
}

TEST(LinuxRunGuard, SleepIsInhibitedUntilTheEnd)
{
    PlayedNice nice;
    const PlayedBus bus;
    const auto guard = makeRunGuard();
    for (int run = 0; run < 2; ++run) {
        onItsOwnThread([&] { guard->begin(); });
        EXPECT_EQ(bus.manager.request,
                  (QStringList{"/org/freedesktop/login1", "org.freedesktop.login1.Manager", "Inhibit",
                               "sleep:idle", "block"}));
        EXPECT_TRUE(bus.manager.inhibitsSleep());
        onItsOwnThread([&] { guard->end(); });
        ASSERT_TRUE(QTest::qWaitFor([&bus] { return !bus.manager.inhibitsSleep(); }, 10000));
    }
}

TEST(LinuxRunGuard, WhatIsRefusedKeepsNothingElseFromItsCourse)
{
    PlayedNice nice;
    nice.refused = true;
    const PlayedBus bus;
    const auto guard = makeRunGuard();
    onItsOwnThread([&] { guard->begin(); });
    EXPECT_TRUE(bus.manager.inhibitsSleep());
    onItsOwnThread([&] { guard->end(); });
    EXPECT_TRUE(QTest::qWaitFor([&bus] { return !bus.manager.inhibitsSleep(); }, 10000));
}
