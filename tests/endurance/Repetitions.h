#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QElapsedTimer>
#include <QtGlobal>

#include <cstdio>

#include <gtest/gtest.h>

/// How often something seeded is tried. The ordinary run of the tests takes a few;
/// TARVEL_<WHAT>S says how many in place of that, TARVEL_<WHAT>_SEED the first one.
class Repetitions {
public:
    Repetitions(const char* singular, int ordinarily) : what(singular)
    {
        const QByteArray prefix = QByteArray("TARVEL_") + singular;
        tries =
            qEnvironmentVariableIsSet(prefix + "S") ? qEnvironmentVariableIntValue(prefix + "S") : ordinarily;
        firstSeed = static_cast<quint32>(qEnvironmentVariableIntValue(prefix + "_SEED"));
    }

    int count() const { return tries; }
    quint32 first() const { return firstSeed; }
    quint32 last() const { return firstSeed + static_cast<quint32>(tries) - 1; }

    /// Calls back with each seed, and names it before: after a crash the last one
    /// named is to blame.
    /// @return how they went, with the seeds that failed
    template<typename Try>
    QByteArray each(const Try& attempt) const
    {
        QByteArrayList failed;
        for (int i = 0; i < tries; ++i) {
            const quint32 seed = firstSeed + static_cast<quint32>(i);
            std::printf("%s %u", what, seed);
            std::fflush(stdout);
            QElapsedTimer time;
            time.start();
            const auto failures = [] {
                return ::testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
            };
            const int before = failures();
            attempt(seed);
            const bool well = failures() == before;
            std::printf(": %s, %.1f s\n", well ? "good" : "FAILED",
                        static_cast<double>(time.elapsed()) / 1000);
            if (!well)
                failed << QByteArray::number(seed);
        }
        return failed.isEmpty() ? "good" : "FAILED with " + failed.join(", ");
    }

private:
    const char* what;
    int tries = 0;
    quint32 firstSeed = 0;
};
