#pragma once

#include <QString>

#include <optional>

/// Bytes that may still be written below a folder. Nothing where the file system
/// does not tell, or tells of none: some that are mounted over a network or
/// served by a program say so at all times.
std::optional<quint64> freeSpaceBytes(const QString& folder);

/// What every file system tells from now on. Nothing gives them back their own
/// words.
void pretendFreeSpace(std::optional<quint64> bytes);
