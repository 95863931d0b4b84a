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

/// Whether these programs stand on this one's C library, so that what both calculate
/// is the same to the last bit.
bool toolsShareOurLibrary();

/// Runs a program from the search path to its end, with no input.
ToolResult runTool(const QString& program, const QStringList& arguments);
