#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// What an independent program made of its task.
struct ToolResult {
    int exitCode = -1; ///< -1: could not be started, crashed, or took over two minutes
    QByteArray output;
    QByteArray errors;

    bool ok() const { return exitCode == 0; }
};

/// Runs a program from the search path to its end, with no input.
ToolResult runTool(const QString& program, const QStringList& arguments);
