#pragma once

#include <QString>
#include <QStringList>

/// Collects the debug log of all threads while it lives, in place of printing it.
/// One at a time.
class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    QStringList debugLines() const;
    QStringList warnings() const;
    /// Warnings and debug lines in the order in which they came.
    QStringList lines() const;
};
