#include "support/TestHome.h"

#include <QDir>
#include <QSettings>

// The registry belongs to all processes; a file in a folder of its own to one.
TestHome::TestHome()
{
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder.path());
    const QByteArray home = QDir::toNativeSeparators(folder.path()).toUtf8();
    for (const char* name : {"USERPROFILE", "APPDATA", "LOCALAPPDATA"})
        qputenv(name, home);
    QDir(folder.path()).mkpath(QStringLiteral("Music"));
}
