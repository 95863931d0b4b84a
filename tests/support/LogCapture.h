#pragma once

#include <QList>
#include <QMutex>
#include <QString>
#include <QStringList>
#include <QtGlobal>

#include <optional>

/// Takes the lines of the debug log for its lifetime, one at a time in a process.
class LogCapture {
public:
    LogCapture()
    {
        active = this;
        // cppcheck-suppress useInitializationList ; a line that comes at once needs it active
        previous = qInstallMessageHandler(&LogCapture::take);
    }
    ~LogCapture()
    {
        qInstallMessageHandler(previous);
        active = nullptr;
    }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// Warnings alone, in order.
    QStringList warnings() const { return linesOf(QtWarningMsg); }
    QStringList debugLines() const { return linesOf(QtDebugMsg); }
    /// Warnings and debug lines in the order in which they came.
    QStringList lines() const { return linesOf(std::nullopt); }

private:
    struct Line {
        QtMsgType type;
        QString text;
    };

    static void take(QtMsgType type, const QMessageLogContext&, const QString& text)
    {
        const QMutexLocker locker(&active->mutex);
        active->taken.append({type, text});
    }

    QStringList linesOf(std::optional<QtMsgType> type) const
    {
        const QMutexLocker locker(&mutex);
        QStringList texts;
        for (const Line& line : taken) {
            if (!type || line.type == *type)
                texts.append(line.text);
        }
        return texts;
    }

    static inline LogCapture* active = nullptr;
    QtMessageHandler previous = nullptr;
    mutable QMutex mutex;
    QList<Line> taken;
};
