#include "base/FileNames.h"

#include <QFile>

qsizetype nameLength(const QString& name)
{
    return QFile::encodeName(name).size();
}

QString harmlessName(QString name)
{
    return name;
}
