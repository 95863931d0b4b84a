#include "base/ServiceOverride.h"

#include <gtest/gtest.h>

namespace {

struct Service {};
struct OtherService {};

} // namespace

TEST(ServiceOverride, StandsInForItsLifetimeAndMayBeNested)
{
    Service own;
    Service first;
    Service second;
    EXPECT_EQ(&ServiceOverride<Service>::orElse(own), &own);
    {
        const ServiceOverride<Service> outer(first);
        EXPECT_EQ(&ServiceOverride<Service>::orElse(own), &first);
        {
            const ServiceOverride<Service> inner(second);
            EXPECT_EQ(&ServiceOverride<Service>::orElse(own), &second);
        }
        EXPECT_EQ(&ServiceOverride<Service>::orElse(own), &first);
        OtherService other;
        EXPECT_EQ(&ServiceOverride<OtherService>::orElse(other), &other);
    }
    EXPECT_EQ(&ServiceOverride<Service>::orElse(own), &own);
}
