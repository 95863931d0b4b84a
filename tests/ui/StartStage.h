#pragma once

#include "support/ProcessLocale.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include <gtest/gtest.h>

/// The program's own main, in a process of its own.
class StartStage : public ::testing::Test {
protected:
    /// Starts the program and reads what the probe says of it.
    QMap<QByteArray, QByteArray> start(const char* locale = "de_DE.UTF-8")
    {
        QProcess program;
        QProcessEnvironment environment = environmentOfLocale(locale);
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home.path());
        program.setProcessEnvironment(environment);
        program.start(QStringLiteral(TARVEL_START_PROBE), QStringList());
        EXPECT_TRUE(program.waitForFinished(60000));
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(program.exitCode(), 0) << program.readAllStandardError().toStdString();
        QMap<QByteArray, QByteArray> said;
        for (const QByteArray& line : program.readAllStandardOutput().split('\n')) {
            const qsizetype colon = line.indexOf(": ");
            if (colon > 0)
                said[line.left(colon)] = line.mid(colon + 2).trimmed();
        }
        return said;
    }

    QTemporaryDir home;
};
