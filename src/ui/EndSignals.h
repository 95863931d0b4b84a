#pragma once

#include <memory>

/// While it lives, the system's request to end closes the windows as the user
/// would and ends the event loops with success. The same request a second time
/// ends the process at once.
///
/// Lives in the GUI thread, beside the application; one at a time.
class EndSignals {
public:
    EndSignals();
    ~EndSignals();
    EndSignals(const EndSignals&) = delete;
    EndSignals& operator=(const EndSignals&) = delete;

private:
    class Listener;
    std::unique_ptr<Listener> listener;
};
