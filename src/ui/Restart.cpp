#include "ui/Restart.h"

#include <QCoreApplication>
#include <QProcess>

void ProgramStarter::start(const QString& program)
{
    QProcess::startDetached(program, QStringList(), QString());
}

void restartProgram()
{
    static ProgramStarter own;
    ProgramStarterOverride::orElse(own).start(QCoreApplication::applicationFilePath());
    QCoreApplication::quit();
}
