#include "codecs/OutputFile.h"

#include "codecs/EncoderRun.h"
#include "support/FileSizeLimit.h"

#include <new>

class OutputFileTest : public EncoderTest {};

TEST_F(OutputFileTest, BufferedBytesThatTheDiskRefusesShowInFinish)
{
    const FileSizeLimit disk(0);
    OutputFile full;
    ASSERT_TRUE(full.open(toPath(file("full"))));
    ASSERT_TRUE(full.write("few", 3));
    EXPECT_FALSE(full.finish());
    EXPECT_FALSE(full.isOpen());
}

TEST_F(OutputFileTest, AFailureSticks)
{
    const FileSizeLimit disk(0);
    OutputFile full;
    ASSERT_TRUE(full.open(toPath(file("full"))));
    EXPECT_FALSE(full.write(QByteArray(100000, 'x').constData(), 100000));
    EXPECT_FALSE(full.good());
    EXPECT_FALSE(full.seek(0));
    EXPECT_FALSE(full.write("", 0));
    EXPECT_FALSE(full.finish());
}

TEST_F(OutputFileTest, SeekingBackOverwritesInPlace)
{
    OutputFile output;
    ASSERT_TRUE(output.open(toPath(file("patched"))));
    EXPECT_TRUE(output.write("0123456789", 10));
    EXPECT_EQ(output.position(), 10u);
    EXPECT_TRUE(output.seek(4));
    EXPECT_TRUE(output.write("ab", 2));
    EXPECT_EQ(output.position(), 6u);
    EXPECT_TRUE(output.finish());
    EXPECT_EQ(readAll(file("patched")), "0123ab6789");
}

TEST_F(OutputFileTest, ASecondOpenLeavesTheFirstFileAttached)
{
    OutputFile output;
    ASSERT_TRUE(output.open(toPath(file("first"))));
    ASSERT_TRUE(output.write("kept", 4));
    EXPECT_FALSE(output.open(toPath(file("first"))));
    EXPECT_TRUE(output.finish());
    EXPECT_FALSE(output.finish());
    EXPECT_EQ(readAll(file("first")), "kept");
}

TEST_F(OutputFileTest, AFailedAttemptSticksAndAnExceptionIsOne)
{
    for (const bool throws : {false, true}) {
        OutputFile output;
        ASSERT_TRUE(output.open(toPath(file("attempted"))));
        EXPECT_TRUE(output.attempt([&] { return output.write("a", 1); }));
        EXPECT_TRUE(output.good());
        EXPECT_FALSE(output.attempt([throws] {
            if (throws)
                throw std::bad_alloc();
            return false;
        }));
        EXPECT_FALSE(output.good());
        EXPECT_FALSE(output.attempt([&] { return output.write("b", 1); }));
        // One that writes nothing does not make good what was lost.
        EXPECT_TRUE(output.attempt([] { return true; }));
        EXPECT_FALSE(output.good());
        EXPECT_FALSE(output.finish());
    }
}
