#pragma once

#include "support/DiscMaker.h"
#include "support/ProcessLocale.h"

#include <QProcess>
#include <QTemporaryDir>

/// The album title of a sheet with these bytes, as a process of this locale reads it.
inline QByteArray titleReadIn(const char* locale, const QByteArray& title)
{
    const QTemporaryDir folder;
    const QString sheet = writeFile(folder.path(), QStringLiteral("disc.cue"), "TITLE \"" + title + "\"\n");
    QProcess probe;
    probe.setProcessEnvironment(environmentOfLocale(locale));
    probe.start(QStringLiteral(TARVEL_CUE_TEXT_PROBE), {sheet});
    if (!probe.waitForFinished(60000) || probe.exitCode() != 0)
        return "no answer: " + probe.readAllStandardError();
    return probe.readAllStandardOutput().trimmed();
}
