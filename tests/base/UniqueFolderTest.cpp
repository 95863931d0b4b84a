#include "base/UniqueFolder.h"

#include "support/Language.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

namespace {

class UniqueFolder : public ::testing::Test {
protected:
    void SetUp() override { speak(2); }

    QTemporaryDir place;
};

} // namespace

TEST_F(UniqueFolder, ParentsAreMadeAsWell)
{
    const MadeFolder made = makeUniqueFolder(place.path() + QStringLiteral("/a/b"), QStringLiteral("x. y"));
    EXPECT_EQ(made.path, place.path() + QStringLiteral("/a/b/x. y"));
    EXPECT_TRUE(made.created);
    EXPECT_TRUE(QFileInfo(made.path).isDir());
}

TEST_F(UniqueFolder, EachCallHasAFolderOfItsOwn)
{
    for (const char* expected : {"x", "x - Copy", "x - Copy (2)", "x - Copy (3)"}) {
        const MadeFolder made = makeUniqueFolder(place.path(), QStringLiteral("x"));
        EXPECT_EQ(made.path, place.path() + QLatin1Char('/') + QLatin1String(expected));
        EXPECT_TRUE(made.created);
    }
}

TEST_F(UniqueFolder, CallsAtOnceHaveFoldersOfTheirOwn)
{
    constexpr int rounds = 1000;
    constexpr int callers = 4;
    std::atomic<int> arrivals = 0;
    std::mutex lock;
    QSet<QString> made;
    std::vector<std::thread> threads;
    threads.reserve(callers);
    for (int caller = 0; caller < callers; ++caller) {
        threads.emplace_back([&] {
            for (int round = 0; round < rounds; ++round) {
                // All at once; std::barrier may lose who waits where there is no futex.
                ++arrivals;
                while (arrivals < (round + 1) * callers)
                    std::this_thread::yield();
                const MadeFolder folder = makeUniqueFolder(place.path(), QString::number(round));
                const std::lock_guard held(lock);
                if (folder.created)
                    made.insert(folder.path);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(made.size(), rounds * callers);
}

// A name has 255 at most; " - Copy" has seven and " - Copy (2)" eleven.
TEST_F(UniqueFolder, ALongNameIsCutForWhatComesBehindIt)
{
    const QString latin(255, u'a');
    for (const QString& expected : {latin, QString(248, u'a') + QStringLiteral(" - Copy"),
                                    QString(244, u'a') + QStringLiteral(" - Copy (2)")}) {
        const MadeFolder made = makeUniqueFolder(place.path(), latin);
        EXPECT_EQ(made.path, place.path() + u'/' + expected);
        EXPECT_TRUE(made.created);
    }
}

TEST_F(UniqueFolder, AFileOfTheNameIsLeftAlone)
{
    const QString path = place.path() + QStringLiteral("/x");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const MadeFolder made = makeUniqueFolder(place.path(), QStringLiteral("x"));
    EXPECT_EQ(made.path, path);
    EXPECT_FALSE(made.created);
    EXPECT_TRUE(QFileInfo(path).isFile());
    EXPECT_FALSE(makeUniqueFolder(path, QStringLiteral("below")).created);
}

TEST_F(UniqueFolder, AnEmptyNameOfAFolderThatIsThereGoesOnInsideIt)
{
    EXPECT_EQ(makeUniqueFolder(place.path(), QString()).path, place.path() + QStringLiteral("/ - Copy"));
    const MadeFolder made = makeUniqueFolder(place.path() + QStringLiteral("/new"), QString());
    EXPECT_EQ(made.path, place.path() + QStringLiteral("/new/"));
    EXPECT_TRUE(made.created);
}
