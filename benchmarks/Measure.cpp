#include "Measure.h"

#include <algorithm>
#include <cstdio>

double median(QList<double> values)
{
    std::sort(values.begin(), values.end());
    const qsizetype middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

double medianOf(const QList<RunCost>& costs, const std::function<double(const RunCost&)>& figure)
{
    QList<double> values;
    for (const RunCost& cost : costs)
        values.append(figure(cost));
    return median(values);
}

double PairedCosts::ratio(const std::function<double(const RunCost&)>& figure) const
{
    QList<double> ratios;
    for (qsizetype i = 0; i < ours.size(); ++i)
        ratios.append(figure(ours[i]) / figure(other[i]));
    return median(ratios);
}

PairedCosts runPairs(int pairs, const std::function<RunCost()>& ours, const std::function<RunCost()>& other)
{
    PairedCosts costs;
    for (int i = 0; i < pairs; ++i) {
        costs.ours.append(ours());
        costs.other.append(other());
    }
    return costs;
}

void printHead()
{
    std::printf("%-40s %-5s %10s %10s %8s %8s\n", "row", "unit", "ours", "other", "result", "aim");
}

void printRow(const QString& what, const QString& unit, double ours, double other, double result, double aim)
{
    std::printf("%-40s %-5s %10.3f %10.3f %8.3f %8.3f  %s\n", qPrintable(what), qPrintable(unit), ours, other,
                result, aim, result <= aim ? "met" : "MISSED");
    std::fflush(stdout);
}
