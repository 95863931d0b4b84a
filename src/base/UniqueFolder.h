#pragma once

#include <QString>

/// A folder for one run, and whether it came into being for it.
struct MadeFolder {
    QString path;
    bool created = false; ///< false when the file system refused
};

/// Creates parent/name with all its parents. Where a folder of that name is
/// there already, the names go on as "name - Copy", "name - Copy (2)" and so on,
/// in the language in force, so that two runs never share a folder. What is behind
/// the name is kept where the file system does not take both.
MadeFolder makeUniqueFolder(const QString& parent, const QString& name);
