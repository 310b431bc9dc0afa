#include "fleet/EtcdOptions.hpp"

#include <gtest/gtest.h>

namespace {

using connector::etcd::Options;
using connector::etcd::Startup;
using connector_config::etcdOptionsOf;
using connector_config::parseEtcdArgument;

TEST(EtcdOptions, HaveEveryMemberOfTheArgument) {
    const Options options = etcdOptionsOf(parseEtcdArgument(
        "endpoint=http://a:1,endpoint=https://b:2,prefix=p,user=u,password-file=f,ca=a,cert=c,"
        "key=k,cache=h,start=cached"));
    EXPECT_EQ((std::vector<std::string>{"http://a:1", "https://b:2"}), options.endpoints);
    EXPECT_EQ("p", options.prefix);
    EXPECT_EQ("u", options.user);
    EXPECT_EQ("f", options.passwordFile);
    EXPECT_EQ("a", options.tls.authorities);
    EXPECT_EQ("c", options.tls.certificate);
    EXPECT_EQ("k", options.tls.key);
    EXPECT_EQ("h", options.cacheFile);
    EXPECT_EQ(Startup::Kind::Cached, options.startup.kind());
}

TEST(EtcdOptions, WaitForFiveSeconds) {
    const Options options = etcdOptionsOf(parseEtcdArgument("endpoint=http://a:1,prefix=p"));
    EXPECT_EQ(Startup::Kind::Wait, options.startup.kind());
    EXPECT_EQ(std::chrono::seconds(5), options.startup.timeout());
    EXPECT_EQ(std::chrono::seconds(5), options.writeTimeout);
    EXPECT_EQ(Startup::Kind::Empty,
              etcdOptionsOf(parseEtcdArgument("endpoint=http://a:1,prefix=p,start=empty"))
                  .startup.kind());
}

} // namespace
