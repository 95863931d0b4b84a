#include "ui/Restart.h"

#include <QCoreApplication>
#include <QProcess>

namespace {

ProgramStarter* replacementStarter = nullptr;

ProgramStarter& programStarter()
{
    static ProgramStarter own;
    return replacementStarter ? *replacementStarter : own;
}

} // namespace

void ProgramStarter::start(const QString& program)
{
    QProcess::startDetached(program, QStringList(), QString());
}

ProgramStarterOverride::ProgramStarterOverride(ProgramStarter& replacement) : previous(replacementStarter)
{
    replacementStarter = &replacement;
}

ProgramStarterOverride::~ProgramStarterOverride()
{
    replacementStarter = previous;
}

void restartProgram()
{
    programStarter().start(QCoreApplication::applicationFilePath());
    QCoreApplication::quit();
}
