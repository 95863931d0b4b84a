#pragma once

#include <atomic>

/// Orders memory between threads where a queue, a signal or a wait of a library
/// does so as well: by our own means it holds whatever the library's are, and a
/// checker of threads that does not see into the library sees it.
class Handover {
public:
    /// All that this thread did until now is there for whoever takes from now on,
    /// beside what others gave.
    void give() { given.fetch_add(1, std::memory_order_release); }
    void take() const { static_cast<void>(given.load(std::memory_order_acquire)); }

private:
    std::atomic<unsigned> given = 0;
};
