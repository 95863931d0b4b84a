#include <gtest/gtest.h>

#ifdef TARVEL_TEST_WIDGETS
#include <QApplication>
using TestApplication = QApplication;
#else
#include <QGuiApplication>
using TestApplication = QGuiApplication;
#endif
#ifdef TARVEL_TEST_OFFLINE
#include "support/OfflineServices.h"
#endif
#include <QDir>
#include <QTemporaryDir>

// Every test process gets a home of its own, so that neither settings nor music
// folders of the person at the machine are ever touched.
int main(int argc, char** argv)
{
    QTemporaryDir home;
    for (const char* name :
         {"HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME", "XDG_CONFIG_DIRS", "XDG_RUNTIME_DIR"})
        qputenv(name, home.path().toUtf8());
    QDir(home.path()).mkpath(QStringLiteral("Music"));
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent");
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");

#ifdef TARVEL_TEST_OFFLINE
    const OfflineServices offline;
#endif
    ::testing::InitGoogleTest(&argc, argv);
    TestApplication application(argc, argv);
    TestApplication::setOrganizationName(QStringLiteral("TarvelTests"));
    TestApplication::setApplicationName(QStringLiteral("TarvelTests"));
    return RUN_ALL_TESTS();
}
