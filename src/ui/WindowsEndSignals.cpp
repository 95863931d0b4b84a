// A program with windows is asked by messages to them, and Qt answers these.

#include "ui/EndSignals.h"

class EndSignals::Listener {};

EndSignals::EndSignals() = default;

EndSignals::~EndSignals() = default;
