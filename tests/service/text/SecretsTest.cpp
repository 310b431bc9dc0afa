#include <connector/service/text/Secrets.hpp>

#include <gtest/gtest.h>

#include <string>

namespace {

using connector::service::OptionValue;
using connector::service::Secrets;

TEST(Secrets, IncludePasswordsSecretsAndTokensByDefault) {
    const Secrets secrets;
    for (const char* key : {"password", "db.password", "db.PassWord.old", "SECRET", "my-secrets",
                            "token", "auth.tokens", "\xffTOKEN\n"})
        EXPECT_TRUE(secrets.isSecret(key)) << key;
    for (const char* key : {"", "passwor", "pass.word", "secre", "toke n", "net.port"})
        EXPECT_FALSE(secrets.isSecret(key)) << key;
}

TEST(Secrets, GlobsMatchWholeKeysIgnoringCase) {
    const struct {
        int line;
        const char* glob;
        const char* key;
        bool fits;
    } rows[] = {
        {__LINE__, "a", "a", true},
        {__LINE__, "a", "A", true},
        {__LINE__, "A", "a", true},
        {__LINE__, "a", "ab", false},
        {__LINE__, "a", "", false},
        {__LINE__, "", "", true},
        {__LINE__, "", "a", false},
        {__LINE__, "*", "", true},
        {__LINE__, "*", "a.b", true},
        {__LINE__, "a*", "a", true},
        {__LINE__, "a*", "ba", false},
        {__LINE__, "*a", "aba", true},
        {__LINE__, "*a", "ab", false},
        {__LINE__, "a*b*c", "axxbxxbxc", true},
        {__LINE__, "a*b*c", "axxcxxb", false},
        {__LINE__, "a**b", "ab", true},
        {__LINE__, "?", "a", true},
        {__LINE__, "?", "", false},
        {__LINE__, "a?c", "abc", true},
        {__LINE__, "a?c", "ac", false},
        {__LINE__, "*?", "", false},
        {__LINE__, "*?b", "ab", true},
        {__LINE__, "[ab]", "a", false},
        {__LINE__, "[ab]", "[AB]", true},
        {__LINE__, "\\*", "\\x", true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(row.fits, Secrets({row.glob}).isSecret(row.key));
    }
}

TEST(Secrets, MatchAGlobWithManyStarsInLinearTime) {
    std::string glob;
    for (int i = 0; i < 50; ++i)
        glob += "a*";
    EXPECT_FALSE(Secrets({glob + "b"}).isSecret(std::string(100000, 'a')));
}

/// Takes many minutes if every prefix is matched from its beginning.
TEST(SecretKeyMatcher, ChecksEveryPrefixInLinearTime) {
    const Secrets secrets({"a*b*c"});
    Secrets::KeyMatcher key(secrets);
    for (int i = 0; i < 1000000; ++i) {
        key.append("a");
        ASSERT_FALSE(key.isSecret());
    }
    key.append("b");
    EXPECT_FALSE(key.isSecret());
    key.append("c");
    EXPECT_TRUE(key.isSecret());
}

TEST(Secrets, MaskValuesOfAnyType) {
    const Secrets secrets;
    EXPECT_EQ("******", boost::get<std::string>(secrets.masked("token", OptionValue(5))));
    EXPECT_EQ(5, boost::get<int>(secrets.masked("port", OptionValue(5))));
    const auto option = secrets.masked(connector::service::Option{"token", "s", OptionValue(true)});
    EXPECT_EQ("token", option.key);
    EXPECT_EQ("s", option.source);
    EXPECT_EQ("******", boost::get<std::string>(option.value));
}

} // namespace
