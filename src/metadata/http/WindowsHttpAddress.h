#pragma once

#include <QByteArray>
#include <QString>

/// Where a request goes, in the parts that WinHTTP takes.
struct WindowsHttpPlace {
    bool secure = false;
    QString host; ///< in ASCII; empty for an address that leads nowhere
    quint16 port = 0;
    QByteArray target;
};

WindowsHttpPlace placeOf(const QByteArray& address);

/// Where a redirect leads; empty for any scheme but http and https.
/// @param location  the header's value, absolute or relative, escaped or not
QByteArray followedAddress(const QByteArray& from, const QByteArray& location);
