#include "support/DiscDamage.h"

namespace {

constexpr qint64 ownRetries = 1'000'000'000;

} // namespace

SectorFault SectorFault::flaky(quint32 first, quint32 last, double probability)
{
    SectorFault fault;
    fault.first = first;
    fault.last = last;
    fault.probability = probability;
    return fault;
}

SectorFault SectorFault::sticky(quint32 first, quint32 last)
{
    SectorFault fault = flaky(first, last, 1);
    fault.variants = 1;
    return fault;
}

SectorFault SectorFault::silentlyFlaky(quint32 first, quint32 last, double probability)
{
    SectorFault fault = flaky(first, last, probability);
    fault.silent = true;
    return fault;
}

SectorFault SectorFault::silentlySticky(quint32 first, quint32 last)
{
    SectorFault fault = sticky(first, last);
    fault.silent = true;
    return fault;
}

SectorFault SectorFault::stale(quint32 first, quint32 last, double probability, quint32 distance)
{
    SectorFault fault = flaky(first, last, probability);
    fault.staleWithin = distance;
    return fault;
}

SectorFault SectorFault::unreadable(quint32 first, quint32 last, double probability)
{
    SectorFault fault = flaky(first, last, probability);
    fault.kind = Unreadable;
    fault.nanoseconds = ownRetries;
    return fault;
}

SectorFault SectorFault::deadSpot(quint32 first, quint32 last)
{
    SectorFault fault = flaky(first, last, 1);
    fault.wrongBytes = static_cast<int>(patternSectorBytes);
    fault.nanoseconds = ownRetries;
    return fault;
}

SectorFault SectorFault::hanging(quint32 first, quint32 last, double probability)
{
    SectorFault fault = flaky(first, last, probability);
    fault.kind = Hanging;
    return fault;
}

SectorFault SectorFault::shortAnswer(quint32 first, quint32 last, double probability)
{
    SectorFault fault = flaky(first, last, probability);
    fault.kind = Short;
    return fault;
}

SectorFault SectorFault::slow(quint32 first, quint32 last)
{
    SectorFault fault = flaky(first, last, 1);
    fault.kind = Slow;
    return fault;
}

quint64 scramble(quint64 seed, quint64 subject, quint64 turn)
{
    quint64 value = seed * 0x9E3779B97F4A7C15U + subject * 0xC2B2AE3D27D4EB4FU + turn * 0x165667B19E3779F9U;
    for (int round = 0; round < 2; ++round) {
        value ^= value >> 31;
        value *= 0xD6E8FEB86659FD93U;
        value ^= value >> 29;
    }
    return value;
}

bool happens(double probability, quint64 number)
{
    constexpr double numbers = 9007199254740992.0; // 2^53, what a double counts exactly
    return static_cast<double>(number >> 11) < probability * numbers;
}

void WrongPattern::spoil(std::span<quint8> sector) const
{
    forEachPlace([&](size_t place) {
        const auto change = static_cast<quint8>(scramble(key, place, 1) % 255 + 1); // never 0
        sector[place] = static_cast<quint8>(sector[place] ^ change);
    });
}

WrongPattern patternOfReading(const SectorFault& fault, quint64 seed, quint32 lba, quint32 reading)
{
    const quint64 number = scramble(seed, lba, reading);
    if (fault.kind != SectorFault::Wrong || !happens(fault.probability, number))
        return {};
    const quint64 form = scramble(number, 2, 0);
    const quint64 answer = fault.variants > 0 ? form % static_cast<quint64>(fault.variants) : form;
    return {scramble(seed, lba, ~answer), fault.wrongBytes, fault.silent};
}
