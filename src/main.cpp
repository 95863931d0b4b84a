#include "base/Language.h"
#include "ui/EndSignals.h"
#include "ui/Fonts.h"
#include "ui/MainWindow.h"
#include "ui/ProgramEnd.h"
#include "ui/ProgramInfo.h"
#include "ui/Resources.h"

#include <QApplication>
#include <QFont>
#include <QIcon>

#include <memory>
#include <utility>

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QApplication::setApplicationName(QLatin1String(programinfo::name));
    QApplication::setApplicationVersion(QLatin1String(programinfo::version));
    QGuiApplication::setDesktopFileName(QLatin1String(programinfo::desktopEntry));
    initResources();
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icon.ico")));
    QApplication::setOrganizationName(QLatin1String(programinfo::organisation));
    // After the names, which set the scope of the settings, and before any widget.
    loadLanguage();
    installFontSubstitutes();
    QApplication::setFont(QFont(QStringLiteral("Segoe UI"), 9));

    const EndSignals endSignals;
    auto window = std::make_unique<MainWindow>();
    window->show();
    const int exitCode = QApplication::exec();
    endProgram(std::move(window));
    return exitCode;
}
