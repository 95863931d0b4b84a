#include "ui/EndSignals.h"

#include "codecs/Transcoder.h"

#include <QApplication>
#include <QSocketNotifier>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr std::array endSignals{SIGTERM, SIGINT, SIGHUP};

std::atomic<int> wakeUp = -1; ///< what a handler writes to
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);

/// On any thread, in the middle of anything.
void noteSignal(int)
{
    const int errorBefore = errno;
    conversionsAreStopped = true;
    const char byte = 0;
    static_cast<void>(!::write(wakeUp, &byte, sizeof byte));
    errno = errorBefore;
}

} // namespace

class EndSignals::Listener {
public:
    Listener()
    {
        if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0)
            return;
        wakeUp = ends[1];
        notifier = std::make_unique<QSocketNotifier>(ends[0], QSocketNotifier::Read);
        QObject::connect(notifier.get(), &QSocketNotifier::activated, [this] { end(); });
        for (const int number : endSignals)
            take(number);
    }

    ~Listener()
    {
        for (const auto& [number, action] : before)
            ::sigaction(number, &action, nullptr);
        notifier.reset();
        wakeUp = -1;
        conversionsAreStopped = false;
        for (const int end : ends)
            ::close(end);
    }

    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

private:
    void take(int number)
    {
        struct sigaction previous = {};
        // Who started the program may have settled that it is not to hear this one.
        if (::sigaction(number, nullptr, &previous) != 0 || previous.sa_handler == SIG_IGN)
            return;
        struct sigaction own = {};
        own.sa_handler = noteSignal;
        own.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
        if (::sigaction(number, &own, nullptr) == 0)
            before.emplace_back(number, previous);
    }

    void end()
    {
        notifier->setEnabled(false);
        QApplication::closeAllWindows();
        QCoreApplication::exit();
    }

    std::array<int, 2> ends{-1, -1};
    std::unique_ptr<QSocketNotifier> notifier;
    std::vector<std::pair<int, struct sigaction>> before;
};

EndSignals::EndSignals() : listener(std::make_unique<Listener>()) {}

EndSignals::~EndSignals() = default;
