/// --etcd and fleet in a program that was built without etcd.
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

namespace {

using test::Result;
using test::runConnectorConfig;
using test::usageError;

TEST(WithoutEtcd, TheArgumentsAreRefused) {
    EXPECT_EQ((Result{2, "", usageError("This program was built without etcd: --etcd")}),
              runConnectorConfig({"--etcd", "endpoint=http://127.0.0.1:1,prefix=p", "keys"}));
    EXPECT_EQ((Result{2, "", usageError("This program was built without etcd: fleet")}),
              runConnectorConfig({"fleet"}));
    EXPECT_EQ((Result{2, "", usageError("This program was built without etcd: fleet")}),
              runConnectorConfig({"fleet", "import", "--delete", "f"}));
}

TEST(WithoutEtcd, TheHelpDoesNotMentionIt) {
    const std::string help = runConnectorConfig({"--help"}).output;
    EXPECT_EQ(std::string::npos, help.find("etcd"));
    EXPECT_EQ(std::string::npos, help.find("fleet"));
}

} // namespace
