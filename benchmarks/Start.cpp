// Starts the program in fresh processes, off screen, until its first page is drawn.

#include "Measure.h"
#include "Options.h"
#include "QuietSurroundings.h"

#include <QCoreApplication>
#include <QTemporaryDir>

namespace {

constexpr double wantedSeconds = 0.5;

RunCost start(const char* program)
{
    return runChild({QCoreApplication::applicationDirPath() + QLatin1Char('/') + QLatin1String(program)});
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    int runs = 15;
    Options options;
    options.number("runs", "Starts of each.", runs);
    options.read(application);
    const QTemporaryDir home;
    keepSurroundingsQuiet(home.path());
    return runToEnd([&] {
        printHead();
        start("start_program"); // the files are in memory from here on
        start("start_bare");
        const auto costs =
            runInTurn(runs, {[] { return start("start_program"); }, [] { return start("start_bare"); }});
        printRow({QStringLiteral("start to the first page"), QStringLiteral("a window with one label"),
                  QStringLiteral("s")},
                 processorOf(costs[0]), processorOf(costs[1]), bounds::startBesideBare);
        const QList<double> wall = figures(costs[0], [](const RunCost& cost) { return cost.wall; });
        printRow({QStringLiteral("start to the first page, on the wall"), QStringLiteral("0.5 s"),
                  QStringLiteral("s")},
                 wall, QList<double>(wall.size(), wantedSeconds), bounds::startOfWindow);
    });
}
