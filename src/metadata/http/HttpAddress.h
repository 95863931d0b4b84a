#pragma once

#include "metadata/http/HttpTransport.h"

#include <QByteArray>

/// Addresses in the form that goes on the wire. An empty one leads nowhere.

/// Empty when the host is none that a request could go to.
QByteArray addressOf(const HttpRequest& request);

/// Where a redirect leads; empty for any scheme but http and https.
/// @param location  the header's value, absolute or relative, escaped or not
QByteArray followedAddress(const QByteArray& from, const QByteArray& location);
