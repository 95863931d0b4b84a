#include "support/TestHome.h"

#include <QDir>

TestHome::TestHome()
{
    for (const char* name :
         {"HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME", "XDG_CONFIG_DIRS", "XDG_RUNTIME_DIR"})
        qputenv(name, folder.path().toUtf8());
    QDir(folder.path()).mkpath(QStringLiteral("Music"));
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent");
}
