#include "support/PeakMemory.h"

#include <QByteArray>
#include <QFile>

#include <algorithm>

static qint64 bytesOf(const QByteArray& name)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray text = status.readAll();
    const qsizetype at = text.indexOf("\n" + name);
    return at < 0 ? 0 : text.mid(at + 1 + name.size()).simplified().split(' ').value(0).toLongLong() * 1024;
}

PeakMemory::PeakMemory()
{
    QFile marks(QStringLiteral("/proc/self/clear_refs"));
    // The kernel then forgets the peak of earlier work.
    usable = marks.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && marks.write("5") == 1;
    start = bytesOf("VmRSS:");
}

qint64 PeakMemory::growth() const
{
    const qint64 peak = bytesOf("VmHWM:");
    return usable && start > 0 && peak > 0 ? std::max<qint64>(0, peak - start) : -1;
}
