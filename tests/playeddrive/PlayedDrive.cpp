#include "playeddrive/PlayedDrive.h"

#include "playeddrive/PlayedFiles.h"

#include <cstdlib>
#include <exception>
#include <stdexcept>

#include <scsi/sg.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

namespace {

constexpr qint64 nanosecondsInSecond = 1'000'000'000;
thread_local qint64 ownTime = 0;
thread_local bool commanded = false;

void reallySleep(double seconds)
{
    const auto nanoseconds = static_cast<qint64>(seconds * 1e9);
    const timespec time{nanoseconds / nanosecondsInSecond, nanoseconds % nanosecondsInSecond};
    syscall(SYS_clock_nanosleep, CLOCK_MONOTONIC, 0, &time, nullptr); // past our own sleep
}

std::string inFolder(const std::string& folder, const char* name)
{
    return folder + '/' + name;
}

} // namespace

PlayedDrive* PlayedDrive::inUse()
{
    // Never taken down: a program's last calls come after every static object's end.
    static PlayedDrive* const drive = []() -> PlayedDrive* {
        const char* const folder = std::getenv("TARVEL_DRIVE_FOLDER");
        if (!folder || *folder != '/')
            return nullptr;
        try {
            return new PlayedDrive(folder);
        } catch (const std::exception& trouble) {
            std::fprintf(stderr, "The played drive: %s\n", trouble.what());
            std::_Exit(EXIT_FAILURE);
        }
    }();
    return drive;
}

PlayedDrive::PlayedDrive(std::string folder) : home(std::move(folder))
{
    setUpDrive(simulated, description);
    simulated.vendor = "PLAYED  ";
    simulated.product = "CD DRIVE        ";
    mechanism = simulated.open(simulated.letter);
    system.emplace(playedfiles::blockNode, *mechanism);
    system->genericPath = playedfiles::genericNode;
    system->transferLimit = transferLimit;
    playedfiles::make(home, {simulated.vendor, simulated.product, simulated.usb, transferLimit});
    report = std::fopen(inFolder(home, "report").c_str(), "we");
    if (qEnvironmentVariableIsSet("TARVEL_DRIVE_TRACE"))
        trace = std::fopen(inFolder(home, "trace").c_str(), "we");
    if (!report)
        throw std::runtime_error("cannot write into " + home);
    writeReport(0);
}

int PlayedDrive::request(int file, unsigned long code, void* argument)
{
    const std::lock_guard lock(mutex);
    const qint64 before = simulated.nowNanoseconds();
    const bool isCommand = code == SG_IO;
    // A command that hangs lasts until the limit that it carries.
    if (isCommand)
        simulated.timeFloor = qint64{static_cast<const sg_io_hdr*>(argument)->timeout} * 1'000'000;
    const int result = isCommand ? SgIoStandIn::handleRequest(file, code, argument).value_or(-1)
                                 : cooked.answer(code, argument);
    const qint64 passed = simulated.nowNanoseconds() - before;
    if (trace)
        traceRequest(code, argument, result, passed);
    if (isCommand) {
        commanded = true;
        ownTime += passed;
        writeReport(passed);
    }
    return result;
}

void PlayedDrive::traceRequest(unsigned long code, const void* argument, int result, qint64 passed) const
{
    std::fprintf(trace, "%lx", code);
    if (code == SG_IO) {
        const auto* header = static_cast<const sg_io_hdr*>(argument);
        for (int i = 0; i < header->cmd_len; ++i)
            std::fprintf(trace, " %02x", header->cmdp[i]);
        std::fprintf(trace, ", %u bytes in %u ms: status %d, residue %d,", header->dxfer_len, header->timeout,
                     header->status, header->resid);
    }
    std::fprintf(trace, " result %d after %lld ns\n", result, static_cast<long long>(passed));
    std::fflush(trace);
}

void PlayedDrive::sleep(qint64 nanoseconds)
{
    const std::lock_guard lock(mutex);
    const qint64 before = simulated.nowNanoseconds();
    simulated.sleepMilliseconds(static_cast<int>((nanoseconds + 999'999) / 1'000'000));
    ownTime += simulated.nowNanoseconds() - before;
    writeReport(simulated.nowNanoseconds() - before);
}

bool PlayedDrive::hasCommanded()
{
    return commanded;
}

qint64 PlayedDrive::ownNanoseconds()
{
    return ownTime;
}

void PlayedDrive::writeReport(qint64 passed)
{
    std::rewind(report);
    std::fprintf(report, "commands %llu\nsectors %llu\nnanoseconds %lld\n", simulated.commandsSent,
                 simulated.sectorsTransferred, static_cast<long long>(simulated.nowNanoseconds()));
    std::fflush(report);
    simulated.commands.clear(); // nobody asks for them here
    system->requests.clear();
    if (description.pace > 0 && passed > 0)
        reallySleep(description.pace * static_cast<double>(passed) / 1e9);
}
