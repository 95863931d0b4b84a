#pragma once

#include <csignal>
#include <ctime>

/// Keeps a connection that the other side has closed from ending the process:
/// while it lives, SIGPIPE is held back from this thread, and one that came in
/// meanwhile is taken away.
class SignalPipeBlock {
public:
    SignalPipeBlock()
    {
        sigemptyset(&pipeSignal);
        sigaddset(&pipeSignal, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &pipeSignal, &previous);
    }
    ~SignalPipeBlock()
    {
        if (sigismember(&previous, SIGPIPE) == 1)
            return;
        const timespec noWait{};
        while (sigtimedwait(&pipeSignal, nullptr, &noWait) > 0) {
        }
        pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    }
    SignalPipeBlock(const SignalPipeBlock&) = delete;
    SignalPipeBlock& operator=(const SignalPipeBlock&) = delete;

private:
    sigset_t pipeSignal;
    sigset_t previous;
};
