#include "endurance/ProcessLevel.h"

#include "support/OpenFiles.h"

#include <QByteArray>
#include <QDir>
#include <QFile>

#include <malloc.h>
#include <unistd.h>

static qint64 residentBytes()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    const QByteArray pages =
        file.open(QIODevice::ReadOnly) ? file.readAll().split(' ').value(1) : QByteArray();
    return pages.toLongLong() * sysconf(_SC_PAGESIZE);
}

ProcessLevel processLevel()
{
    malloc_trim(0);
    const auto heap = mallinfo2();
    ProcessLevel level;
    level.heapBytes = static_cast<qint64>(heap.uordblks + heap.hblkhd);
    level.residentBytes = residentBytes();
    level.handles = openFileCount();
    level.threads =
        QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size();
    return level;
}
