#include "codecs/Mutation.h"

#include <gtest/gtest.h>

#include <set>

constexpr quint64 truncationEvery = 8;

/// The lengths of the files that are the start of the valid one and no more.
static std::set<qsizetype> truncatedLengths(qsizetype size, quint64 mutants)
{
    QByteArray valid;
    for (qsizetype i = 0; i < size; ++i)
        valid.append(static_cast<char>(i * 7));
    std::set<qsizetype> lengths;
    for (quint64 number = 0; number < mutants; number += truncationEvery) {
        const QByteArray mutant = mutate(valid, number);
        EXPECT_EQ(mutant, valid.left(mutant.size()));
        lengths.insert(mutant.size());
    }
    return lengths;
}

TEST(Mutation, TheSameNumberGivesTheSameBytes)
{
    const QByteArray valid(1000, 'x');
    for (quint64 number = 0; number < 100; ++number)
        EXPECT_EQ(mutate(valid, number), mutate(valid, number)) << number;
}

TEST(Mutation, AFewHundredMutantsCutEveryTenthOfTheFile)
{
    for (const qsizetype size : {1000, 4095, 24000, 6180339}) {
        const auto lengths = truncatedLengths(size, 250);
        for (qsizetype tenth = 0; tenth < 10; ++tenth) {
            const auto first = lengths.lower_bound(tenth * size / 10);
            ASSERT_NE(first, lengths.end()) << size;
            EXPECT_LE(*first, (tenth + 1) * size / 10) << size << ": " << tenth;
        }
    }
}

TEST(Mutation, TheStartOfTheFileIsCutAtEveryByte)
{
    const auto lengths = truncatedLengths(24000, 10000);
    for (qsizetype length = 0; length < 600; ++length)
        EXPECT_TRUE(lengths.contains(length)) << length;
}

TEST(Mutation, EnoughMutantsCutAtEveryLength)
{
    for (const qsizetype size : {0, 1, 2, 7, 96, 97, 255}) {
        const auto turns = static_cast<quint64>(size + 1);
        EXPECT_EQ(truncatedLengths(size, truncationEvery * 2 * turns).size(), turns) << size;
    }
}
