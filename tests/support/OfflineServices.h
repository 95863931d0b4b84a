#pragma once

#include "support/FakeHttpTransport.h"

/// While it lives, this process has no network: every request ends without an
/// answer.
class OfflineServices {
private:
    FakeHttpTransport transport{[](const HttpRequest&) { return HttpAnswer(); }};
    HttpTransportOverride inPlace{transport};
};
