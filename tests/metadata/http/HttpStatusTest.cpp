#include "metadata/http/HttpStatus.h"

#include <gtest/gtest.h>

#include <vector>

// Of the 300s, 300 offers a choice, 304 is of a cache, 305 and 306 are deprecated and unused.
TEST(IsRedirect, FiveStatusesSendElsewhere)
{
    std::vector<int> found;
    for (int status = 0; status < 1000; ++status) {
        if (isRedirect(status))
            found.push_back(status);
    }
    EXPECT_EQ(found, (std::vector<int>{301, 302, 303, 307, 308}));
}
