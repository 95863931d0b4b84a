#include "QuietSurroundings.h"

#include <QLoggingCategory>

void keepSurroundingsQuiet(const QString& home)
{
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"})
        qputenv(name, home.toUtf8());
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent");
    qputenv("QT_QPA_PLATFORM", "offscreen");
}

void dropDebugLog()
{
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false\n*.warning=false"));
}
