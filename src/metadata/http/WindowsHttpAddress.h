#pragma once

#include <QByteArray>
#include <QString>

/// Where a request goes, in the parts that WinHTTP takes.
struct WindowsHttpPlace {
    bool secure = false;
    QString host; ///< in ASCII; empty for an address that leads nowhere
    quint16 port = 0;
    QByteArray target; ///< to the letter as in the address
};

WindowsHttpPlace placeOf(const QByteArray& address);
