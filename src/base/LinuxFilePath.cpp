#include "base/FilePath.h"

#include <QFile>

std::filesystem::path toPath(const QString& path)
{
    return QFile::encodeName(path).toStdString();
}

QString fromPath(const std::filesystem::path& path)
{
    return QFile::decodeName(QByteArray::fromStdString(path.native()));
}

// A name is a row of bytes here, which need not be UTF-8.
std::string utf8Path(const std::filesystem::path& path)
{
    return path.native();
}
