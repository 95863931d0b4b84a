#pragma once

#include <QLatin1String>
#include <QProcessEnvironment>
#include <QString>

/// This process's environment for another one, with the locale named in it and
/// nothing beside that speaks of one.
inline QProcessEnvironment environmentOfLocale(const char* locale)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"LANG", "LANGUAGE", "LC_MESSAGES", "LC_NUMERIC", "LC_CTYPE"})
        environment.remove(QLatin1String(name));
    environment.insert(QStringLiteral("LC_ALL"), QLatin1String(locale));
    return environment;
}
