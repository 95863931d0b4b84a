#include "support/TestHome.h"

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

int main(int argc, char** argv)
{
    const TestHome home;
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
