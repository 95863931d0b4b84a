#include "support/Tool.h"

#include <QProcess>
#include <QProcessEnvironment>

bool toolsShareOurLibrary()
{
    return true;
}

ToolResult runTool(const QString& program, const QStringList& arguments)
{
    constexpr int patienceMs = 120 * 1000;

    QProcess process;
    // The judges speak UTF-8 whatever the machine's locale.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    process.setProcessEnvironment(environment);
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(program, arguments);

    ToolResult result;
    if (!process.waitForStarted() || !process.waitForFinished(patienceMs)) {
        process.kill();
        process.waitForFinished();
        result.errors = process.errorString().toUtf8();
        return result;
    }
    result.output = process.readAllStandardOutput();
    result.errors = process.readAllStandardError();
    if (process.exitStatus() == QProcess::NormalExit)
        result.exitCode = process.exitCode();
    return result;
}
