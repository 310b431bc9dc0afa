// Users, passwords and tokens.
#include "Fixture.hpp"

namespace {

using namespace test;

class AuthenticationTest : public testing::Test {
protected:
    AuthenticationTest() {
        control("user add root:secret");
        control("user grant-role root root");
        control("user add reader:first");
        control("role add fleet");
        control("role grant-permission fleet --prefix=true readwrite " + prefix);
        control("user grant-role reader fleet");
        options.user = "reader";
        options.passwordFile = folder.write("password", "first\n");
    }

    void control(const std::string& words) { server.control(words); }

    const TemporaryDirectory folder;
    EtcdServer server;
    Options options = optionsFor({server.endpoint()});
};

TEST_F(AuthenticationTest, IsNotNeededUntilItIsSwitchedOn) {
    const auto source = std::make_shared<EtcdSource>(options);
    EXPECT_GT(source->put("a", "1").get(), 0);
    control("auth enable");
    const std::int64_t revision = source->put("a", "2").get();
    EXPECT_TRUE(source->waitFor(revision, 30s));
    EXPECT_EQ("2", textOf(*source, "a"));
}

TEST_F(AuthenticationTest, ThatFailsNamesTheCause) {
    control("auth enable");
    folder.write("password", "wrong");
    options.startup = Startup::Empty();
    EtcdSource source(options);
    Observer observer(source);
    EXPECT_TRUE(observer.waitUntil([](const Status& status) {
        return status.failure.find("authentication failed") != std::string::npos;
    }));
}

TEST_F(AuthenticationTest, WithoutAUserIsRefused) {
    options.user = "";
    const auto source = std::make_shared<EtcdSource>(options);
    Observer observer(*source);
    control("auth enable");
    EXPECT_TRUE(observer.waitUntil([](const Status& status) {
        return status.state == State::Stale &&
               status.failure.find("user name is empty") != std::string::npos;
    }));
}

TEST_F(AuthenticationTest, FollowsAChangedPassword) {
    control("auth enable");
    const auto source = std::make_shared<EtcdSource>(options);
    EXPECT_GT(source->put("a", "1").get(), 0);
    Observer observer(*source);
    runProgram("printf 'second\\nsecond\\n' | ETCDCTL_API=3 etcdctl --dial-timeout=30s "
               "--command-timeout=30s --endpoints=" +
               server.endpoint() + " --user=root:secret user passwd reader --interactive=false");
    // The old token is not valid any more, and neither is the old password.
    EXPECT_TRUE(observer.waitFor(State::Stale));
    EXPECT_EQ("1", textOf(*source, "a"));
    folder.write("password", "second\n");
    EXPECT_TRUE(observer.waitFor(State::Current));
    const std::int64_t revision = source->put("a", "2").get();
    EXPECT_TRUE(source->waitFor(revision, 30s));
}

TEST_F(AuthenticationTest, FetchesATokenThatLapsed) {
    control("auth enable");
    const auto source = std::make_shared<EtcdSource>(options);
    const std::int64_t revision = source->put("a", "1").get();
    EXPECT_TRUE(source->waitFor(revision, 30s));
    Observer observer(*source);
    server.kill(); // forgets all tokens
    server.restart();
    ASSERT_TRUE(observer.waitFor(State::Stale));
    EXPECT_TRUE(observer.waitFor(State::Current));
    EXPECT_GT(source->put("a", "2").get(), revision);
    EXPECT_EQ(1u, source->status().lists);
}

TEST_F(AuthenticationTest, RefusesWritesBeyondThePermission) {
    control("role revoke-permission fleet --prefix=true " + prefix);
    control("role grant-permission fleet --prefix=true read " + prefix);
    control("auth enable");
    const auto source = std::make_shared<EtcdSource>(options);
    try {
        source->put("a", "1").get();
        FAIL() << "it was written";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ("Not written: etcdserver: permission denied", error.what());
    }
    EXPECT_EQ(State::Current, source->status().state);
}

} // namespace
