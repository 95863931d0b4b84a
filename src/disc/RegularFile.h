#pragma once

#include <QFile>
#include <QFileInfo>

/// Opens regular files only: devices and pipes could block for ever.
inline bool openRegular(QFile& file, const QString& path, QIODevice::OpenMode mode = QIODevice::ReadOnly)
{
    file.setFileName(path);
    return QFileInfo(path).isFile() && file.open(mode);
}
