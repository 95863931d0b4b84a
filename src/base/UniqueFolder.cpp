#include "base/UniqueFolder.h"

#include "base/FittingName.h"
#include "base/Language.h"

#include <QDir>
#include <QFileInfo>

namespace {

/// True when this call, and nobody else, made the folder.
bool createFolder(const QString& path)
{
    return QDir().mkpath(QFileInfo(QDir::cleanPath(path)).path()) && QDir().mkdir(path);
}

} // namespace

MadeFolder makeUniqueFolder(const QString& parent, const QString& name)
{
    const QString first = parent + u'/' + name;
    const QString copy = pickLang(" - コピー", " - Copy");
    QString candidate = first;
    for (int n = 1;; ++n) {
        if (!QFileInfo(candidate).isDir()) {
            if (createFolder(candidate))
                return {candidate, true};
            // Unless somebody else was quicker, the name cannot be had.
            if (!QFileInfo(candidate).isDir())
                return {candidate, false};
        }
        candidate = fittingPath(first, n == 1 ? copy : copy + QStringLiteral(" (%1)").arg(n));
    }
}
