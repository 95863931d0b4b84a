#include "base/FreeSpace.h"

#include <QFile>

#include <filesystem>

static std::optional<quint64> pretended;

static quint64 toldSpace(const QString& folder)
{
    std::error_code error;
    const std::filesystem::space_info space =
        std::filesystem::space(QFile::encodeName(folder).toStdString(), error);
    return error ? 0 : space.available;
}

std::optional<quint64> freeSpaceBytes(const QString& folder)
{
    const quint64 told = pretended ? *pretended : toldSpace(folder);
    return told == 0 ? std::nullopt : std::optional(told);
}

void pretendFreeSpace(std::optional<quint64> bytes)
{
    pretended = bytes;
}
