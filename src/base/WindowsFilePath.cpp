#include "base/FilePath.h"

std::filesystem::path toPath(const QString& path)
{
    return path.toStdWString();
}

QString fromPath(const std::filesystem::path& path)
{
    return QString::fromStdWString(path.native());
}

std::string utf8Path(const std::filesystem::path& path)
{
    return fromPath(path).toStdString();
}
