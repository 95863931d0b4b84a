#pragma once

#include "ChildRun.h"

#include <QList>
#include <QString>

#include <functional>

/// Paired runs A B A B ..., judged pair by pair, so that a machine that gets
/// slower on the way slows both sides of a pair.
struct PairedCosts {
    QList<RunCost> ours;
    QList<RunCost> other;

    double ratio(const std::function<double(const RunCost&)>& figure) const; ///< median over the pairs
};

PairedCosts runPairs(int pairs, const std::function<RunCost()>& ours, const std::function<RunCost()>& other);

double median(QList<double> values);
double medianOf(const QList<RunCost>& costs, const std::function<double(const RunCost&)>& figure);

/// One line of the table; aims are upper bounds.
void printHead();
void printRow(const QString& what, const QString& unit, double ours, double other, double result, double aim);
