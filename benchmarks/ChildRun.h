#pragma once

#include <QByteArray>
#include <QStringList>

#include <functional>

/// What one run cost: all of its processes, from their start to their end.
struct RunCost {
    double processor = 0; ///< seconds, user and system
    double wall = 0;      ///< seconds
    qint64 peakBytes = 0; ///< largest resident size of any one of its processes
    QByteArray output;    ///< what the processes wrote to stdout

    RunCost& operator+=(const RunCost& other);
};

/// Runs a program to its end. Its peak memory can't come out below this process's
/// own, so this process has to stay small.
///
/// Throws std::runtime_error when it can't be started or exits with anything but 0.
RunCost runChild(const QStringList& command);

/// Processor seconds, user and system, that this process has used up to now.
double ownProcessorSeconds();
/// What work in this process costs: its processor time alone.
RunCost processorCost(const std::function<void()>& work);
