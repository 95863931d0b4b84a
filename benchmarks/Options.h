#pragma once

#include <QCommandLineParser>
#include <QList>
#include <QStringList>

#include <functional>
#include <utility>

/// The command line of a benchmark: numbers by name, the rows to measure, and their form.
class Options {
public:
    Options();

    /// A whole number of at least 1. The value that stands there is the preset;
    /// read() writes what was given.
    void number(const char* name, const char* text, int& value);
    /// The rows by name, as positional arguments; an empty list means all of them.
    void rows(const char* names, QStringList& chosen);
    /// Ends the process for a wrong option.
    void read(const QCoreApplication& application);

private:
    QCommandLineParser parser;
    QList<std::pair<QString, int*>> numbers;
    QStringList* chosenRows = nullptr;
};

/// Runs a benchmark to its end.
/// @return the exit code: 1, with the reason on stderr, when it threw
int runToEnd(const std::function<void()>& benchmark);
