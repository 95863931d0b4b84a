#include <QRegularExpression>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

// What a thread has for itself is destroyed while its memory is still there.

namespace {

constexpr quint64 whole = 0x1122334455667788;
std::atomic<int> endedWhole = 0;

struct Witness {
    volatile quint64 first = whole;
    volatile quint64 others[15]{};
    volatile quint64 last = whole;
    ~Witness() { endedWhole += first == whole && last == whole; }
};

thread_local Witness witness;

} // namespace

TEST(WindowsThreadEnd, VariablesOfAThreadAreWholeWhenTheyAreDestroyed)
{
    constexpr int threads = 50;
    endedWhole = 0;
    for (int i = 0; i < threads; ++i)
        std::thread([] { EXPECT_EQ(witness.first, whole); }).join();
    EXPECT_EQ(endedWhole, threads);
}

// Qt keeps a stack for compiled expressions in each thread.
TEST(WindowsThreadEnd, AThreadThatMatchedAnExpressionEnds)
{
    for (int i = 0; i < 50; ++i) {
        std::thread([] {
            const QRegularExpression expression(QStringLiteral("(a+)+b"));
            EXPECT_TRUE(expression.match(QString(40, u'a') + u'b').hasMatch());
        }).join();
    }
}
