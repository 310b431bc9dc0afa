#include <connector/service/access/Token.hpp>

#include "support/Expect.hpp"
#include "support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using connector::service::readToken;
using connector::service::Token;

TEST(Token, MatchesOnlyTheSameText) {
    const Token token("abc");
    EXPECT_TRUE(token.matches("abc"));
    for (const std::string text : {"", "a", "ab", "abd", "bbc", "ABC", "abcd", " abc", "abc "})
        EXPECT_FALSE(token.matches(text)) << text;
    EXPECT_FALSE(token.matches(std::string("abc\0", 4)));
}

TEST(TokenFile, MayEndWithALineBreak) {
    const test::TemporaryDirectory directory;
    for (const char* content : {"abc", "abc\n", "abc\r\n"})
        EXPECT_TRUE(readToken(directory.write("token", content).string()).matches("abc"));
}

TEST(TokenFile, MayHaveTheMaximumLength) {
    const test::TemporaryDirectory directory;
    const std::string text(4096, 'x');
    EXPECT_TRUE(readToken(directory.write("token", text + "\r\n").string()).matches(text));
}

TEST(TokenFile, MustNotBeEmpty) {
    const test::TemporaryDirectory directory;
    for (const char* content : {"", "\n", "\r\n"}) {
        const std::string path = directory.write("token", content).string();
        test::expectThrows<std::runtime_error>("Token file is empty: " + path,
                                               [&path] { readToken(path); });
    }
}

TEST(TokenFile, MustBeReadable) {
    const test::TemporaryDirectory directory;
    for (const std::string& path : {(directory.path / "none").string(), directory.path.string()})
        test::expectThrows<std::runtime_error>("Token file could not be read: " + path,
                                               [&path] { readToken(path); });
}

TEST(TokenFile, MustBeOneLineOfVisibleAscii) {
    const test::TemporaryDirectory directory;
    for (const std::string& content :
         {std::string("a\nb\n"), std::string("abc\n\n"), std::string("a b"), std::string("\xff"),
          std::string("a\0", 2), std::string(4097, 'x')}) {
        const std::string path = directory.write("token", content).string();
        test::expectThrows<std::runtime_error>(
            "Token is not one line of visible ASCII of at most 4096 bytes: " + path,
            [&path] { readToken(path); });
    }
}

} // namespace
