#include "ChildRun.h"

#include <QElapsedTimer>
#include <QFile>
#include <QList>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <vector>

namespace {

constexpr int exitWithoutProgram = 127;

double seconds(const rusage& usage)
{
    const auto part = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return part(usage.ru_utime) + part(usage.ru_stime);
}

QByteArray readToEnd(int descriptor)
{
    QByteArray all;
    char piece[4096];
    for (;;) {
        const ssize_t count = read(descriptor, piece, sizeof piece);
        if (count > 0)
            all.append(piece, count);
        else if (count == 0 || errno != EINTR)
            return all;
    }
}

} // namespace

RunCost& RunCost::operator+=(const RunCost& other)
{
    processor += other.processor;
    wall += other.wall;
    peakBytes = std::max(peakBytes, other.peakBytes);
    output += other.output;
    return *this;
}

RunCost runChild(const QStringList& command)
{
    QList<QByteArray> words;
    for (const QString& word : command)
        words.append(QFile::encodeName(word));
    std::vector<char*> arguments;
    for (QByteArray& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);

    int ends[2];
    if (pipe(ends) != 0)
        throw std::runtime_error("no pipe");
    QElapsedTimer clock;
    clock.start();
    const pid_t child = fork();
    if (child == 0) {
        dup2(ends[1], STDOUT_FILENO);
        close(ends[0]);
        close(ends[1]);
        execvp(arguments[0], arguments.data());
        _exit(exitWithoutProgram);
    }
    close(ends[1]);
    RunCost cost;
    cost.output = readToEnd(ends[0]);
    close(ends[0]);
    int status = -1;
    rusage usage{};
    while (child > 0 && wait4(child, &status, 0, &usage) < 0 && errno == EINTR) {
    }
    if (child < 0 || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
        throw std::runtime_error("failed: " + command.join(QLatin1Char(' ')).toStdString());
    cost.wall = static_cast<double>(clock.nsecsElapsed()) / 1e9;
    cost.processor = seconds(usage);
    cost.peakBytes = qint64{usage.ru_maxrss} * 1024;
    return cost;
}

double ownProcessorSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return seconds(usage);
}

RunCost processorCost(const std::function<void()>& work)
{
    const double before = ownProcessorSeconds();
    work();
    RunCost cost;
    cost.processor = ownProcessorSeconds() - before;
    return cost;
}
