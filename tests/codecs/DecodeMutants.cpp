// Decodes mutants of a valid file, one after another, and says which one it is at.
//
//   tarvel_decode_mutants VALID SCRATCH FIRST COUNT
//
// Every mutant is written to SCRATCH, whose ending picks the decoder. The process
// ends with 0 when all of them were refused or played to an end. One that takes
// more than two minutes of work ends it with 3; a fault ends it as faults do.
//
//   tarvel_decode_mutants FILE
//
// Decodes one file as it is, and says how many MiB of addresses that took at most.

#include "codecs/IAudioDecoder.h"
#include "codecs/Mutation.h"
#include "support/ProcessLimits.h"

#include <QFile>

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace {

// The largest block that a header may ask for, 2^26 samples of one-bit audio, is a
// minute of filtering under the sanitizers.
constexpr std::chrono::seconds timeForOne{120};
constexpr int timeLimitCode = 3;
// A header may state terabytes of silence, and gets them; this much of it is enough.
constexpr quint64 mostSamples = 4 * 1024 * 1024;
constexpr int mostBlocks = 3000;

QByteArray readFile(const char* name)
{
    QFile file(QString::fromLocal8Bit(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool writeFile(const char* name, const QByteArray& bytes)
{
    QFile file(QString::fromLocal8Bit(name));
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

/// Whether the decoder kept its promises about blocks.
bool play(const char* name)
{
    const auto decoder = makeDecoder(name);
    if (!decoder->open(name))
        return !decoder->read();
    const AudioFormat format = decoder->format();
    decoder->totalFrames();
    quint64 samples = 0;
    for (int blocks = 0; blocks < mostBlocks && samples < mostSamples; ++blocks) {
        const auto block = decoder->read();
        if (!block)
            break;
        if (static_cast<quint64>(block->samples.size()) != block->frames * format.channels)
            return false;
        samples += static_cast<quint64>(block->samples.size());
    }
    decoder->close();
    return !decoder->read();
}

int playOne(const char* name)
{
    const long before = processlimits::mostAllocatedKiB();
    processlimits::limitWork(timeForOne, timeLimitCode);
    const bool kept = play(name);
    std::printf("took %ld\n", (processlimits::mostAllocatedKiB() - before) / 1024);
    return kept && before > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 2)
        return playOne(argv[1]);
    if (argc != 5)
        return EXIT_FAILURE;
    processlimits::limitMemory();
    const QByteArray valid = readFile(argv[1]);
    const quint64 first = std::strtoull(argv[3], nullptr, 10);
    const quint64 count = std::strtoull(argv[4], nullptr, 10);
    for (quint64 number = first; number < first + count; ++number) {
        std::printf("mutant %llu\n", static_cast<unsigned long long>(number));
        std::fflush(stdout);
        QByteArray mutant = mutate(valid, number);
        if (valid.startsWith("OggS") && number % 4 != 1)
            sealOggPages(mutant);
        if (!writeFile(argv[2], mutant))
            return EXIT_FAILURE;
        processlimits::limitWork(timeForOne, timeLimitCode);
        if (!play(argv[2]))
            return EXIT_FAILURE;
        processlimits::limitWork({}, 0);
    }
    std::puts("all played");
    return EXIT_SUCCESS;
}
