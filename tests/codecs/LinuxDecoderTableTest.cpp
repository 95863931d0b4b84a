#include "codecs/pcm/AiffDecoder.h"

#include <gtest/gtest.h>

#include <clocale>

static bool isAiff(const char* path)
{
    return dynamic_cast<AiffDecoder*>(makeDecoder(path).get()) != nullptr;
}

TEST(LinuxDecoderTable, LoweringIsNotLimitedToAscii)
{
    const std::string before = std::setlocale(LC_CTYPE, nullptr);
    ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
    // The capital I with a dot above has the plain small i.
    EXPECT_TRUE(isAiff("a.A\u0130FF"));
    EXPECT_TRUE(isAiff("\u97F3\u697D.A\u0130F"));
    std::setlocale(LC_CTYPE, before.c_str());
}
