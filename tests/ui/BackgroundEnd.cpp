// A lookup that outlives its window makes pictures, which takes an application, and
// asks services that go after the tests.

#include "ui/Background.h"

#include <gtest/gtest.h>

namespace {

class BackgroundEnd : public ::testing::Environment {
    void TearDown() override { waitForBackground(); }
};

const auto* const backgroundEnd = ::testing::AddGlobalTestEnvironment(new BackgroundEnd);

} // namespace
