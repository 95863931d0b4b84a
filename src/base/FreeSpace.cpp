#include "base/FreeSpace.h"

#include "base/FilePath.h"

static std::optional<quint64> pretended;

static quint64 toldSpace(const QString& folder)
{
    // With a slash at its end: without one some libraries ask for what the folder lies in.
    std::error_code error;
    const std::filesystem::space_info space = std::filesystem::space(toPath(folder) / "", error);
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
