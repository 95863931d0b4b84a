#include "ui/RipSettings.h"

#include <QSettings>
#include <QStandardPaths>

RipSettings RipSettings::load()
{
    const QSettings stored;
    RipSettings found;
    found.maxRetries = stored.value(QLatin1String(settings::maxRetries), found.maxRetries).toInt();
    found.sampleOffset = stored.value(QLatin1String(settings::sampleOffset), found.sampleOffset).toInt();
    found.defaultFolder = stored.value(QLatin1String(settings::defaultDir)).toString();
    found.setNamingRule(stored.value(QLatin1String(settings::namingRule)).toString());
    return found;
}

void RipSettings::store() const
{
    QSettings stored;
    stored.setValue(QLatin1String(settings::maxRetries), maxRetries);
    stored.setValue(QLatin1String(settings::sampleOffset), sampleOffset);
    stored.setValue(QLatin1String(settings::defaultDir), defaultFolder);
    stored.setValue(QLatin1String(settings::namingRule), namingRule);
}

void RipSettings::setNamingRule(const QString& rule)
{
    namingRule = rule.trimmed().isEmpty() ? QLatin1String(settings::defaultNamingRule) : rule;
}

QString RipSettings::folderToStartWith() const
{
    return defaultFolder.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::MusicLocation)
                                   : defaultFolder;
}
