/// The example programs, run in the root of the checkout.
#include "tools/support/Process.hpp"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

TEST(WatchOptionExample, PrintsEachEffectiveValue) {
    std::filesystem::current_path(PROJECT_ROOT);
    EXPECT_EQ((test::Result{0,
                            "net.port is now 9090\n"
                            "net.port is now 8080\n"
                            "net.port is now 8080\n"
                            "net.port is now 9090\n"
                            "completed\n",
                            ""}),
              test::run({WATCH_OPTION_PROGRAM}));
}

} // namespace
