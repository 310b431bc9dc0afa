// Addresses and keys.
#include <connector/etcd/detail/Endpoint.hpp>
#include <connector/etcd/detail/Keys.hpp>

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using namespace connector::etcd::detail;

TEST(EndpointTest, IsReadFromAUrl) {
    EXPECT_EQ("ipv4:127.0.0.1:2379", parseEndpoint("http://127.0.0.1:2379").target);
    EXPECT_EQ("ipv6:[::1]:2379", parseEndpoint("http://[::1]:2379").target);
    EXPECT_EQ("dns:///etcd-0.rack:1", parseEndpoint("https://etcd-0.rack:1/").target);
    EXPECT_TRUE(parseEndpoint("https://a:1").isSecure);
    EXPECT_FALSE(parseEndpoint("http://a:1").isSecure);
    EXPECT_EQ("http://a:1", parseEndpoint("http://a:1").url);
}

TEST(EndpointTest, IsRefusedWhenItCannotBeRead) {
    for (const char* const url :
         {"", "a:1", "ftp://a:1", "http://", "http://a", "http://a:", "http://a:0",
          "http://a:65536", "http://a:1x", "http://:1", "http://a b:1", "http://[::1:1",
          "http://[a]:1", "http://a/b:1", "http://user@a:1", "HTTP://a:1"})
        EXPECT_THROW(parseEndpoint(url), std::invalid_argument) << url;
}

TEST(KeysTest, TheEndOfAPrefixFollowsAllItsKeys) {
    EXPECT_EQ("fleet0", endOfPrefix("fleet/"));
    EXPECT_EQ("b", endOfPrefix("a\xFF\xFF"));
    EXPECT_EQ(std::string(1, '\0'), endOfPrefix("\xFF"));
}

TEST(KeysTest, AnOptionHasAKeyThatIsUtf8AndNotEmpty) {
    EXPECT_TRUE(isOptionKey("a.b"));
    EXPECT_TRUE(isOptionKey("\xC3\xA4"));
    EXPECT_FALSE(isOptionKey(""));
    EXPECT_FALSE(isOptionKey("\xC3"));
    EXPECT_FALSE(isOptionKey(std::string_view(probeKey("p/")).substr(2)));
}

} // namespace
