#pragma once

#include <QByteArray>
#include <QString>

/// Blocking GET requests for small bodies: one ends at 64 MiB, as one that breaks
/// off (HttpLimits::bodyBytes). An empty body is the one sign of a failure. A
/// port in the address is ignored: https means 443, all else 80.

/// Follows every redirect, and logs.
/// @param status  if not null, set to the server's status; 0 without an answer
/// @return the body when the status is 200, else nothing
QByteArray httpGet(const QString& url, int* status = nullptr);

/// As httpGet, but silent, and never follows a redirect from https to http.
QByteArray gnudbGet(const QString& url);

/// Follows every redirect, is silent, and returns the body of any status. The
/// text behind the host goes out as it stands, its escaping untouched.
QByteArray verbatimGet(const QString& url);
