#include <connector/service/http/SharedTexts.hpp>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using connector::service::SharedTexts;
using Text = SharedTexts::Text;

Text large(char letter) {
    return std::make_shared<const std::string>(SharedTexts::minSize, letter);
}

TEST(SharedTexts, EqualTextsAreOne) {
    SharedTexts texts;
    const Text first = texts.shared(large('a'));
    EXPECT_EQ(first, texts.shared(large('a')));
    EXPECT_EQ(1u, texts.size());
}

TEST(SharedTexts, DifferentTextsStayDifferent) {
    SharedTexts texts;
    const Text a = texts.shared(large('a'));
    const Text b = texts.shared(large('b'));
    EXPECT_EQ(*large('a'), *a);
    EXPECT_EQ(*large('b'), *b);
    EXPECT_EQ(2u, texts.size());
}

TEST(SharedTexts, ShortTextsAreNotLookedUp) {
    SharedTexts texts;
    const auto text = std::make_shared<const std::string>(SharedTexts::minSize - 1, 'a');
    EXPECT_EQ(text, texts.shared(text));
    EXPECT_EQ(0u, texts.size());
}

TEST(SharedTexts, ATextIsReleasedWhenNobodyUsesIt) {
    SharedTexts texts;
    Text text = texts.shared(large('a'));
    const std::weak_ptr<const std::string> use = text;
    text.reset();
    EXPECT_TRUE(use.expired());
    const Text next = large('a');
    EXPECT_EQ(next, texts.shared(next));
}

TEST(SharedTexts, TextsThatNobodyUsesAreForgotten) {
    SharedTexts texts;
    std::vector<Text> used;
    for (int i = 0; i < 10; ++i)
        used.push_back(texts.shared(large(static_cast<char>('0' + i))));
    for (int i = 0; i < 1000; ++i)
        texts.shared(std::make_shared<const std::string>(SharedTexts::minSize + 1 + i, 'x'));
    EXPECT_LE(texts.size(), 2 * used.size() + 16);
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(used[i], texts.shared(large(static_cast<char>('0' + i))));
}

} // namespace
