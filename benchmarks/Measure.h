#pragma once

#include "Bounds.h"
#include "ChildRun.h"

#include <QList>
#include <QString>

#include <functional>

/// Runs the sides in turn, A B A B ..., so that a machine that gets slower on the way
/// slows all of them. One list of costs for each side.
QList<QList<RunCost>> runInTurn(int rounds, const QList<std::function<RunCost()>>& sides);

/// One figure of each run.
QList<double> figures(const QList<RunCost>& costs, const std::function<double(const RunCost&)>& figure);
/// The processor seconds of each run.
QList<double> processorOf(const QList<RunCost>& costs);

double median(QList<double> values);

/// How rows come out: a table for the eye, or fields between tabs for a script.
enum class RowForm { Table, Fields };
void chooseRowForm(RowForm form);

/// What one row sets side by side.
struct RowName {
    QString what;
    QString other; ///< the tool, or the measure that ours is held against
    QString unit;
};

void printHead();

/// Prints one row: the medians of both sides, and the median and the extremes of our
/// figure by the other's, run by run.
/// @return whether that median is within the bound
bool printRow(const RowName& name, const QList<double>& ours, const QList<double>& other, const Bound& bound);
/// A line below a row, for the eye alone.
void printNote(const QString& what, const QString& unit, double value);
