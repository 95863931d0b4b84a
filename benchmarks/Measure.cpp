#include "Measure.h"

#include <algorithm>
#include <cstdio>

namespace {

RowForm rowForm = RowForm::Table;

} // namespace

QList<QList<RunCost>> runInTurn(int rounds, const QList<std::function<RunCost()>>& sides)
{
    QList<QList<RunCost>> costs(sides.size());
    for (int round = 0; round < rounds; ++round) {
        for (qsizetype side = 0; side < sides.size(); ++side)
            costs[side].append(sides[side]());
    }
    return costs;
}

QList<double> figures(const QList<RunCost>& costs, const std::function<double(const RunCost&)>& figure)
{
    QList<double> values;
    std::transform(costs.cbegin(), costs.cend(), std::back_inserter(values), figure);
    return values;
}

QList<double> processorOf(const QList<RunCost>& costs)
{
    return figures(costs, [](const RunCost& cost) { return cost.processor; });
}

double median(QList<double> values)
{
    std::sort(values.begin(), values.end());
    const qsizetype middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

void chooseRowForm(RowForm form)
{
    rowForm = form;
}

void printHead()
{
    if (rowForm == RowForm::Table)
        std::printf("%-42s %-28s %-4s %9s %9s %7s  %-15s %6s\n", "row", "other", "unit", "ours", "other",
                    "ratio", "from, to", "bound");
}

bool printRow(const RowName& name, const QList<double>& ours, const QList<double>& other, const Bound& bound)
{
    QList<double> ratios;
    std::transform(ours.cbegin(), ours.cend(), other.cbegin(), std::back_inserter(ratios), std::divides<>());
    const double middle = median(ratios);
    const auto [least, most] = std::minmax_element(ratios.cbegin(), ratios.cend());
    const bool holds = middle <= bound.most;
    if (rowForm == RowForm::Table)
        std::printf("%-42s %-28s %-4s %9.3f %9.3f %7.3f  %7.3f %7.3f %6.2f  %s\n", qUtf8Printable(name.what),
                    qUtf8Printable(name.other), qUtf8Printable(name.unit), median(ours), median(other),
                    middle, *least, *most, bound.most, holds ? "met" : "MISSED");
    else
        std::printf("row\t%s\t%s\t%s\t%.6f\t%.6f\t%.6f\t%.6f\t%.6f\t%.6f\t%s\t%s\n",
                    qUtf8Printable(name.what), qUtf8Printable(name.other), qUtf8Printable(name.unit),
                    median(ours), median(other), middle, *least, *most, bound.most, holds ? "met" : "MISSED",
                    bound.reason);
    std::fflush(stdout);
    return holds;
}

void printNote(const QString& what, const QString& unit, double value)
{
    if (rowForm == RowForm::Table)
        std::printf("  %-69s %-4s %9.3f\n", qUtf8Printable(what), qUtf8Printable(unit), value);
}
