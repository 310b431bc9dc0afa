/// The warning of serve about an address that other machines reach.
#include "service/support/ServerProcess.hpp"
#include "support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using test::Result;
using test::ServerProcess;

const std::string anywhere = "0.0.0.0:0";

std::string warningOf(const std::string& address) {
    return "connector-config: Warning: every machine that reaches " + address +
           " may read the options; --token-file FILE or --client-ca FILE would prevent that\n";
}

std::string errorsOf(const std::vector<std::string>& arguments, const std::string& address) {
    ServerProcess server(arguments, {}, address);
    const Result result = server.stop();
    EXPECT_EQ(0, result.status);
    return result.errors;
}

TEST(ServeWarnings, AnAddressOfOtherMachinesWithoutCredentialsIsOne) {
    EXPECT_EQ(warningOf("0.0.0.0"), errorsOf({}, anywhere));
}

TEST(ServeWarnings, EachSuchAddressIsOne) {
    EXPECT_EQ(warningOf("0.0.0.0") + warningOf("0.0.0.0"),
              errorsOf({"--http", anywhere, "--http", "127.0.0.1:0"}, anywhere));
}

TEST(ServeWarnings, AddressesOfThisMachineAreNone) {
    for (const char* const address : {"127.0.0.1:0", "127.0.0.2:0", "localhost:0", "2130706433:0"})
        EXPECT_EQ("", errorsOf({}, address)) << address;
}

TEST(ServeWarnings, UnixSocketsAreNone) {
    const test::TemporaryDirectory directory;
    EXPECT_EQ("", errorsOf({"--http", "unix:" + (directory.path / "s").string()}, "127.0.0.1:0"));
}

TEST(ServeWarnings, ATokenPreventsThem) {
    const test::TemporaryDirectory directory;
    const std::string token = directory.write("token", "secret").string();
    EXPECT_EQ("", errorsOf({"--token-file", token}, anywhere));
}

} // namespace
