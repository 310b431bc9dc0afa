/// Conversions between UTF-8 and UTF-16, and what they refuse.

#include "support/Expect.hpp"

#include <fl/i18n/codecvt.hpp>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace test {

namespace {

using namespace std::string_literals;

struct Pair {
    int line;
    std::string utf8;
    std::u16string utf16;
};

/// The limits of each sequence length and of the surrogate range.
const std::vector<Pair> valid = {
    {__LINE__, "", u""},
    {__LINE__, "plain text", u"plain text"},
    {__LINE__, "\0"s, u"\0"s},
    {__LINE__, "a\0b"s, u"a\0b"s},
    {__LINE__, "\x7F", u"\u007F"},
    {__LINE__, "\xC2\x80", u"\u0080"},
    {__LINE__, "\xC3\xA9", u"\u00E9"},
    {__LINE__, "\xDF\xBF", u"\u07FF"},
    {__LINE__, "\xE0\xA0\x80", u"\u0800"},
    {__LINE__, "\xE2\x82\xAC", u"\u20AC"},
    {__LINE__, "\xED\x9F\xBF", u"\uD7FF"},
    {__LINE__, "\xEE\x80\x80", u"\uE000"},
    {__LINE__, "\xEF\xBB\xBF", u"\uFEFF"},                     // a byte order mark is a character
    {__LINE__, "\xEF\xBB\xBFx\xEF\xBB\xBF", u"\uFEFFx\uFEFF"}, // at any position
    {__LINE__, "\xEF\xBF\xBD", u"\uFFFD"},
    {__LINE__, "\xEF\xBF\xBE", std::u16string(1, 0xFFFE)}, // noncharacters are allowed, too
    {__LINE__, "\xEF\xBF\xBF", std::u16string(1, 0xFFFF)},
    {__LINE__, "\xF0\x90\x80\x80", u"\U00010000"},
    {__LINE__, "\xF0\x9F\x98\x80", u"\U0001F600"},
    {__LINE__, "\xF4\x8F\xBF\xBF", u"\U0010FFFF"},
    {__LINE__, "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z", u"a\u00E9\u20AC\U0001F600z"},
};

struct BadUtf8 {
    int line;
    std::string text;
};

const std::vector<BadUtf8> badUtf8 = {
    // Bytes that never begin a sequence.
    {__LINE__, "\x80"},
    {__LINE__, "\xBF"},
    {__LINE__, "\xF8\x88\x80\x80\x80"},
    {__LINE__, "\xFC\x84\x80\x80\x80\x80"},
    {__LINE__, "\xFE"},
    {__LINE__, "\xFF"},
    // Overlong forms: the shortest and the longest of each length.
    {__LINE__, "\xC0\x80"},
    {__LINE__, "\xC0\xAF"},
    {__LINE__, "\xC1\xBF"},
    {__LINE__, "\xE0\x80\x80"},
    {__LINE__, "\xE0\x80\xAF"},
    {__LINE__, "\xE0\x9F\xBF"},
    {__LINE__, "\xF0\x80\x80\x80"},
    {__LINE__, "\xF0\x80\x80\xAF"},
    {__LINE__, "\xF0\x8F\xBF\xBF"},
    // Surrogates, alone and as a pair.
    {__LINE__, "\xED\xA0\x80"},
    {__LINE__, "\xED\xAF\xBF"},
    {__LINE__, "\xED\xB0\x80"},
    {__LINE__, "\xED\xBF\xBF"},
    {__LINE__, "\xED\xA0\xBD\xED\xB8\x80"},
    // Above U+10FFFF.
    {__LINE__, "\xF4\x90\x80\x80"},
    {__LINE__, "\xF5\x80\x80\x80"},
    {__LINE__, "\xF7\xBF\xBF\xBF"},
    // Truncated by the end.
    {__LINE__, "\xC3"},
    {__LINE__, "\xE2"},
    {__LINE__, "\xE2\x82"},
    {__LINE__, "\xF0"},
    {__LINE__, "\xF0\x9F"},
    {__LINE__, "\xF0\x9F\x98"},
    {__LINE__, "valid until \xE2\x82"},
    // Truncated by another character.
    {__LINE__, "\xC3x"},
    {__LINE__, "\xE2\x82x"},
    {__LINE__, "\xE2x\xAC"},
    {__LINE__, "\xF0\x9F\x98x"},
    {__LINE__, "\xC3\xC3\xA9"},
    {__LINE__, "\xC3\0"s},
    {__LINE__, "x\xA9"},
};

struct BadUtf16 {
    int line;
    std::u16string text;
};

const std::vector<BadUtf16> badUtf16 = {
    {__LINE__, {0xD800}},                 // a high surrogate at the end
    {__LINE__, {0xDBFF}},                 //
    {__LINE__, {u'x', 0xD83D}},           //
    {__LINE__, {0xDC00}},                 // a low surrogate without a high one
    {__LINE__, {0xDFFF}},                 //
    {__LINE__, {u'x', 0xDE00, u'x'}},     //
    {__LINE__, {0xD83D, u'x'}},           // a high surrogate before another character
    {__LINE__, {0xD83D, 0xD83D, 0xDE00}}, // or before a pair
    {__LINE__, {0xD83D, 0}},              //
    {__LINE__, {0xD83D, 0xE000}},         //
    {__LINE__, {0xDE00, 0xD83D}},         // a pair in the wrong order
    {__LINE__, {0xD83D, 0xDE00, 0xDE00}}, // a low surrogate after a pair
};

const fl::i18n::codecvt_string_to_ustring toUtf16("UTF-8");
const fl::i18n::codecvt_ustring_to_string toUtf8("UTF-8");

} // namespace

TEST(Codecvt, Utf8BecomesUtf16) {
    for (const Pair& pair : valid) {
        SCOPED_TRACE("row in line " + std::to_string(pair.line));
        EXPECT_EQ(pair.utf16, fl::i18n::to_ustring(pair.utf8, toUtf16));
    }
}

TEST(Codecvt, Utf16BecomesUtf8) {
    for (const Pair& pair : valid) {
        SCOPED_TRACE("row in line " + std::to_string(pair.line));
        EXPECT_EQ(pair.utf8, fl::i18n::to_string(pair.utf16, toUtf8));
    }
}

TEST(Codecvt, EveryCharacterSurvivesARoundTrip) {
    const auto encode = [](char32_t c) {
        if (c < 0x10000)
            return std::u16string(1, static_cast<char16_t>(c));
        return std::u16string{static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)),
                              static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF))};
    };
    for (char32_t c = 0; c <= 0x10FFFF; ++c) {
        if (c >= 0xD800 && c <= 0xDFFF)
            continue;
        const std::u16string text = encode(c);
        ASSERT_EQ(text, toUtf16.convert(toUtf8.convert(text))) << static_cast<unsigned>(c);
    }
}

TEST(Codecvt, InvalidUtf8IsRefused) {
    for (const BadUtf8& bad : badUtf8) {
        SCOPED_TRACE("row in line " + std::to_string(bad.line));
        expectThrows<std::runtime_error>("Text is not valid UTF-8",
                                         [&] { fl::i18n::to_ustring(bad.text, toUtf16); });
    }
}

TEST(Codecvt, InvalidUtf8IsRefusedInTheMiddleOfText) {
    for (const BadUtf8& bad : badUtf8) {
        SCOPED_TRACE("row in line " + std::to_string(bad.line));
        expectThrows<std::runtime_error>("Text is not valid UTF-8", [&] {
            fl::i18n::to_ustring("\xC3\xA9" + bad.text + "z", toUtf16);
        });
    }
}

TEST(Codecvt, InvalidUtf16IsRefused) {
    for (const BadUtf16& bad : badUtf16) {
        SCOPED_TRACE("row in line " + std::to_string(bad.line));
        expectThrows<std::runtime_error>("Text is not valid UTF-16",
                                         [&] { fl::i18n::to_string(bad.text, toUtf8); });
    }
}

TEST(Codecvt, InvalidUtf16IsRefusedInTheMiddleOfText) {
    for (const BadUtf16& bad : badUtf16) {
        SCOPED_TRACE("row in line " + std::to_string(bad.line));
        expectThrows<std::runtime_error>("Text is not valid UTF-16", [&] {
            fl::i18n::to_string(u"\u00E9" + bad.text + u"z", toUtf8);
        });
    }
}

TEST(Codecvt, EveryLoneSurrogateIsRefused) {
    for (unsigned unit = 0xD800; unit <= 0xDFFF; ++unit) {
        const std::u16string text(1, static_cast<char16_t>(unit));
        EXPECT_THROW(toUtf8.convert(text), std::runtime_error) << unit;
    }
}

TEST(Codecvt, AConverterIsUsableAfterAFailure) {
    EXPECT_ANY_THROW(toUtf16.convert("\xFF"));
    EXPECT_EQ(u"\u00E9", toUtf16.convert("\xC3\xA9"));
    EXPECT_ANY_THROW(toUtf8.convert(std::u16string(1, 0xD800)));
    EXPECT_EQ("\xC3\xA9", toUtf8.convert(u"\u00E9"));
}

TEST(Codecvt, OtherEncodingsThanUtf8AreRefused) {
    for (const std::string& name : {""s, "utf-8"s, "UTF8"s, "UTF-16"s, "UTF-8 "s, "ISO-8859-1"s}) {
        SCOPED_TRACE(name);
        expectThrows<std::invalid_argument>("Unsupported text encoding: " + name, [&] {
            const fl::i18n::codecvt_string_to_ustring converter(name);
        });
        expectThrows<std::invalid_argument>("Unsupported text encoding: " + name, [&] {
            const fl::i18n::codecvt_ustring_to_string converter(name);
        });
    }
}

TEST(Codecvt, TheConsumeAllFlagMakesNoDifference) {
    for (const bool consumeAll : {true, false}) {
        const fl::i18n::codecvt_string_to_ustring in("UTF-8", consumeAll);
        const fl::i18n::codecvt_ustring_to_string out("UTF-8", consumeAll);
        EXPECT_EQ(u"\u00E9", in.convert("\xC3\xA9"));
        EXPECT_EQ("\xC3\xA9", out.convert(u"\u00E9"));
        EXPECT_THROW(in.convert("\xC3"), std::runtime_error);
        EXPECT_THROW(out.convert(std::u16string(1, 0xD800)), std::runtime_error);
    }
}

TEST(Codecvt, OneConverterServesSeveralThreads) {
    const std::string text(10000, 'x');
    std::vector<std::u16string> results(4);
    std::vector<std::thread> threads;
    for (std::u16string& result : results)
        threads.emplace_back([&] { result = toUtf16.convert(text); });
    for (std::thread& thread : threads)
        thread.join();
    for (const std::u16string& result : results)
        EXPECT_EQ(std::u16string(10000, u'x'), result);
}

} // namespace test
