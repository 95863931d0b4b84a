#pragma once

#include "metadata/http/HttpTransport.h"

#include <atomic>

/// Sends one request and follows its redirects, with a session of its own. A
/// connection that the other side closes raises SIGPIPE, which the caller holds
/// back.
/// @param detour   null for the real network
/// @param stopped  ends the exchange within a fraction of a second when it becomes true
HttpAnswer exchange(const HttpRequest& request, const HttpLimits& limits, const HttpDetour* detour,
                    const std::atomic<bool>& stopped);
