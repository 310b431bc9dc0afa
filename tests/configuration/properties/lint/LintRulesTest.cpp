/// The rules of the checker, one table for each.

#include "configuration/properties/lint/DocumentedRules.hpp"

#include <connector/configuration/properties/Lint.hpp>

#include <gtest/gtest.h>

#include <set>
#include <sstream>

namespace test {

namespace {

namespace properties = connector::configuration::properties;
using properties::Finding;

std::vector<Finding> lint(const std::string& text) {
    std::istringstream stream(text);
    return properties::lint(stream);
}

/// @return "LINE:COLUMN RULE" for each finding, with a comma between two
std::string places(const std::string& text) {
    std::string result;
    for (const Finding& finding : lint(text))
        result += (result.empty() ? "" : ", ") + std::to_string(finding.line) + ':' +
                  std::to_string(finding.column) + ' ' + std::string(nameOf(finding.rule));
    return result;
}

struct Row {
    int line;
    std::string text;
    std::string places;
};

void expectRows(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        SCOPED_TRACE(std::to_string(row.line) + ": " + testing::PrintToString(row.text));
        EXPECT_EQ(row.places, places(row.text));
    }
}

} // namespace

TEST(LintRules, TextThatBothReadAlikeHasNoFinding) {
    expectRows({
        {__LINE__, "", ""},
        {__LINE__, "\n\r\n\r", ""},
        {__LINE__, "# c\n! c\n#\\\na=b\nb: c\nc d\nd = e\n", ""},
        {__LINE__, "a=b  \na\\=b=c\\\\d\nb=\\u00e9\n=nameless\n", ""},
        {__LINE__, "a=one\\\n  two\nb=\\\n  c\n", ""},
        {__LINE__, "a=x\\\n#y\n", ""}, // the sign is text for both
        {__LINE__, "a = =b\nb=c\\\\", ""},
        {__LINE__, "   # c", ""}, // the library loses it at the end of the file
        {__LINE__, " ", ""},
        {__LINE__, "\xEF\xBB\xBF", ""},
    });
}

TEST(LintRules, NoSeparator) {
    expectRows({
        {__LINE__, "key\na=b\n", "1:1 no-separator"},
        {__LINE__, "a=b\nkey\nother\nc=d\n", "2:1 no-separator, 3:1 no-separator"},
        {__LINE__, "key\n# comment\n", "1:1 no-separator"},
        {__LINE__, "key\r\n\r\na=b\r\n", "1:1 no-separator"},
        {__LINE__, "\f\na=b\n", "1:1 no-separator"},
        {__LINE__, "key\fvalue\na=b\n", "1:1 no-separator"},
    });
}

TEST(LintRules, EmptyKey) {
    expectRows({
        {__LINE__, " a=b\n", "1:1 empty-key"},
        {__LINE__, "a=b\n\t c=d\n", "2:1 empty-key"},
        {__LINE__, "   \n", "1:1 empty-key"},
        {__LINE__, " \\\na=b\n", "1:1 empty-key"},
        {__LINE__, " = b\n", ""}, // empty for both
    });
}

TEST(LintRules, SecondSeparator) {
    expectRows({
        {__LINE__, "a==b\n", "1:3 second-separator"},
        {__LINE__, "a=  : b\n", "1:5 second-separator"},
        {__LINE__, "a \\\n= b\n", "2:1 second-separator, 2:2 leading-blank"},
        {__LINE__, "a \\\n=b\n", "2:1 second-separator"},
        {__LINE__, "a = =b\n", ""}, // kept by both
    });
}

TEST(LintRules, Escape) {
    expectRows({
        {__LINE__, "a=C:\\temp\\new\n", "1:5 escape, 1:10 escape"},
        {__LINE__, "a=\\r\\f\n", "1:3 escape, 1:5 escape"},
        {__LINE__, "a\\tb=c\n", "1:2 escape"},
        {__LINE__, " a=\\t\n", "1:1 empty-key, 1:4 escape"},
        {__LINE__, " # a \\t\n", "1:1 comment"}, // the convention has no escape there
        {__LINE__, "a=\\\\t\\x\\:\n", ""},
    });
}

TEST(LintRules, TrailingBlank) {
    expectRows({
        {__LINE__, "a =  \n", "1:5 trailing-blank"},
        {__LINE__, "a =\t \t\r\n", "1:5 trailing-blank"},
        {__LINE__, "a=\f\n", "1:3 trailing-blank"},
        {__LINE__, "a = \na=  \nb= c  \n", "2:1 duplicate-key"}, // kept, or dropped, by both
    });
}

TEST(LintRules, LeadingBlank) {
    expectRows({
        {__LINE__, "a =  b\n", "1:5 leading-blank"},
        {__LINE__, "a :\t\tb\n", "1:5 leading-blank"},
        {__LINE__, "a=\fb\n", "1:3 leading-blank"},
        {__LINE__, "a=  b\n", ""},
        {__LINE__, "a=\\  b\n", ""},
    });
}

TEST(LintRules, Continuation) {
    expectRows({
        {__LINE__, "a=b\\\n\tc\n", "2:1 continuation"},
        {__LINE__, "a=b\\\n  \tc\n", "2:3 continuation"},
        {__LINE__, "a=b\\\n\fc\n", "2:1 continuation"},
        {__LINE__, "a=b\\\n\nc=d\n", "1:4 continuation"},
        {__LINE__, "a=b\\\n\n# c\n", "1:4 continuation"},
        {__LINE__, "a=b\\\r\n  \r\nc=d\r\n", "1:4 continuation"},
        {__LINE__, "a=b\\\n", "1:4 continuation"},
        {__LINE__, "a=b\\\n  \n", "1:4 continuation"},
        {__LINE__, "a\\\nb=c\n", "1:2 continuation"},
    });
}

TEST(LintRules, Comment) {
    expectRows({
        {__LINE__, " # c\n", "1:1 comment"},
        {__LINE__, "a=b\n\t! c\n", "2:1 comment"},
        {__LINE__, "\f# c\n", "1:1 comment"},
        {__LINE__, "a=b # c\n", ""}, // text for both
    });
}

TEST(LintRules, LostAtEnd) {
    expectRows({
        {__LINE__, "a=", "1:1 lost-at-end"},
        {__LINE__, "a= ", "1:1 lost-at-end"},
        {__LINE__, "a ", "1:1 lost-at-end"},
        {__LINE__, "key", "1:1 lost-at-end"},
        {__LINE__, "key\n\n", "1:1 lost-at-end"},
        {__LINE__, "a=b\nkey\nlast", "2:1 no-separator, 3:1 lost-at-end"},
        {__LINE__, " a=b", "1:2 lost-at-end"},
        {__LINE__, "=b", "1:1 lost-at-end"},
        {__LINE__, "a=b\\", "1:1 lost-at-end"},
        {__LINE__, "a\\", "1:1 lost-at-end"},
        {__LINE__, "a==\\t\\", "1:1 lost-at-end"}, // whatever else is wrong with it
        {__LINE__, "a =", ""},                     // kept, unlike "a="
    });
}

TEST(LintRules, UnicodeEscape) {
    expectRows({
        {__LINE__, "a=\\u41\n", "1:3 unicode-escape"},
        {__LINE__, "a=\\u00gz\n", "1:3 unicode-escape"},
        {__LINE__, "a=\\u41", "1:3 unicode-escape"},
        {__LINE__, "\\u=b\nc=d\n", "1:1 unicode-escape"},
        {__LINE__, "a=\\ud83d\n", "1:3 unicode-escape"},
        {__LINE__, "a=\\ud83d\\ude00\n", "1:3 unicode-escape, 1:9 unicode-escape"},
        {__LINE__, "a=\\u00\\\n41\nb=c\n", "1:3 unicode-escape"},
        {__LINE__, "\\u12", "1:1 lost-at-end, 1:1 unicode-escape"},
        // The library takes the backslash as a digit, so its next line is a comment.
        {__LINE__, "a=\\u000\\\n#\\u12\n", "1:3 unicode-escape, 2:2 unicode-escape"},
        {__LINE__, "a=b\n# \\u\na=\\uFFFF\\u0000\n", "3:1 duplicate-key"},
        // Given again: but the escape makes the other reader refuse the whole file.
        {__LINE__, "a=\\u\na=b\n", "1:3 unicode-escape"},
    });
}

TEST(LintRules, ByteOrderMark) {
    expectRows({
        {__LINE__,
         "\xEF\xBB\xBF"
         "a=b\n",
         "1:1 byte-order-mark"},
        {__LINE__, "\xEF\xBB\xBF# c\n", "1:1 byte-order-mark"},
        {__LINE__, "\xEF\xBB\xBF\na=b\n", "1:1 byte-order-mark"},
        {__LINE__,
         "\xEF\xBB\xBF"
         "a==b\n",
         "1:1 byte-order-mark, 1:6 second-separator"},
        {__LINE__, "a=\xEF\xBB\xBF\n\xEF\xBB\xBF=b\n", ""},
    });
}

TEST(LintRules, Difference) {
    expectRows({
        {__LINE__, "a\fb=c\n", "1:2 difference"},
        {__LINE__, "a\f=c\n", "1:2 difference"},
        {__LINE__, "\fa=b\n", "1:1 difference"},
    });
}

TEST(LintRules, OnlyALineThatMattersIsReported) {
    expectRows({
        {__LINE__, "a==b\na=c\n", "2:1 duplicate-key"},
        {__LINE__, "a=c\na==b\n", "2:1 duplicate-key, 2:3 second-separator"},
        {__LINE__, "a==b\na==c\n", "2:1 duplicate-key, 2:3 second-separator"},
        // An empty key with an empty value comes from the one line here, from the other there.
        {__LINE__, " \n\\", ""},
    });
}

TEST(LintRules, DuplicateKey) {
    expectRows({
        {__LINE__, "a=b\nb=c\na=d\na=e\n", "3:1 duplicate-key, 4:1 duplicate-key"},
        {__LINE__, "a=b\n\\u0061=c\n", "2:1 duplicate-key"},
    });
    EXPECT_EQ("the key \"a\" is also given on line 1; the value on line 3 replaces that one",
              lint("a=b\n\na=c\n").at(0).text);
    EXPECT_EQ("the key \"a\" is also given on line 3; the value on line 4 replaces that one",
              lint("a=b\n\na=c\na=d\n").at(1).text);
}

TEST(LintRules, NotUtf8) {
    expectRows({
        {__LINE__, "a=\xFF\n", "1:3 not-utf8"},
        {__LINE__, "a=\xC3\xA9\xC3\n# \xED\xA0\xBD\n", "1:5 not-utf8, 2:3 not-utf8"},
        {__LINE__, "a=\xF0\x9F\x98\x80\xEF\xBF\xBF\n", ""},
        {__LINE__, "a=\xC0\x80\n", "1:3 not-utf8"},
        {__LINE__, "a=\xF4\x90\x80\x80\n", "1:3 not-utf8"},
    });
}

TEST(LintRules, Suspicious) {
    expectRows({
        {__LINE__, "a=\"b\"\n", "1:3 suspicious"},
        {__LINE__, "a = 'b'\n", "1:5 suspicious"},
        {__LINE__, "a=\"\nb=\"c\n", ""},
        {__LINE__, "a=x/${HOME}/y\n", "1:5 suspicious"},
        {__LINE__, "a=x$\\{HOME}\n", "1:3 suspicious"},
        {__LINE__, "a=${\n", ""},
        {__LINE__, "net.Port=1\nnet.port=2\nnet.port=3\n", "2:1 suspicious, 3:1 duplicate-key"},
    });
}

TEST(LintRules, ATextSaysWhatEachReadsAndHowToWriteIt) {
    const struct {
        int line;
        std::string text;
        std::string expected;
    } rows[] = {
        {__LINE__, "a==b\n",
         "the second separator is dropped: the library reads \"a\" = \"b\", java.util.Properties "
         "reads \"a\" = \"=b\"; write a=b for both to read the former, or a=\\=b for both to read "
         "the latter"},
        {__LINE__, "key\na=b\n",
         "a line without a separator runs on into the next: the library reads \"key<U+000A>a\" = "
         "\"b\", java.util.Properties reads \"key\" = \"\", \"a\" = \"b\"; write key\\u000Aa=b for "
         "both to read the former, or key= and a=b for both to read the latter"},
        {__LINE__, "a=\\t\n",
         "\\t is the letter t, not a control character, and \\\\ is a backslash: the library reads "
         "\"a\" = \"t\", java.util.Properties reads \"a\" = \"<U+0009>\"; write a=t for both to "
         "read the former, or a=\\u0009 for both to read the latter"},
        {__LINE__, "a=",
         "the last property of the file is lost: the library reads nothing, java.util.Properties "
         "reads \"a\" = \"\"; write a comment for both to read the former, or a= and a line break "
         "for both to read the latter"},
        {__LINE__, "a=\\u41\n",
         "\\u is not followed by four hexadecimal digits: the library reads \"a\" = "
         "\"A\", java.util.Properties refuses the file; write a=A for both to read the former"},
        {__LINE__, "a=\\ud83d\\ude00\n",
         "a half of a surrogate pair is stored on its own: the library reads \"a\" = "
         "\"<0xED><0xA0><0xBD><0xED><0xB8><0x80>\", java.util.Properties reads \"a\" = "
         "\"\xF0\x9F\x98\x80\"; write a=\xF0\x9F\x98\x80 for both to read the latter"},
        {__LINE__, "a=\\ud83d\n",
         "a half of a surrogate pair is stored on its own: the library reads \"a\" = "
         "\"<0xED><0xA0><0xBD>\", java.util.Properties reads \"a\" = \"<U+D83D>\"; no file can "
         "make both agree on either"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(row.expected, lint(row.text).at(0).text);
    }
}

TEST(LintRules, ASecretValueIsNotShown) {
    for (const std::string text :
         {"my.password==s3cret\n", " my.password=s3cret\n", "my.password=\"s3cret\"\n",
          "my.password=${s3cret}\n", " my.password=${s3cret}\n", "next\nmy.password=s3cret\n",
          "my.password=s3\\cret\\t\n"}) {
        SCOPED_TRACE(text);
        std::istringstream stream(text);
        const std::vector<Finding> findings = properties::lint(stream, [](std::string_view key) {
            return key.find("password") != std::string_view::npos;
        });
        EXPECT_FALSE(findings.empty());
        for (const Finding& finding : findings) {
            EXPECT_EQ(std::string::npos, finding.text.find("cret")) << finding.text;
            EXPECT_NE(std::string::npos, finding.text.find("******")) << finding.text;
        }
    }
}

TEST(LintRules, TheRowsOfTheDocumentAreTrue) {
    const auto rows = test::documentedRules();
    EXPECT_EQ(17u, rows.size());
    std::set<properties::Rule> seen;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.file);
        const std::vector<Finding> findings = lint(row.file);
        ASSERT_FALSE(findings.empty());
        EXPECT_EQ(row.rule, nameOf(findings[0].rule));
        EXPECT_NE(std::string::npos,
                  findings[0].text.find("the library reads " + row.library +
                                        ", java.util.Properties " + row.convention + "; "))
            << findings[0].text;
        seen.insert(findings[0].rule);
    }
    for (const auto& description : properties::rules())
        EXPECT_EQ(isDifference(description.rule), seen.count(description.rule) == 1);
}

TEST(LintRules, LongTextsAreShortened) {
    const std::string text = lint("a==" + std::string(10000, 'x') + "\n").at(0).text;
    EXPECT_LT(text.size(), 500u);
    EXPECT_NE(std::string::npos, text.find("xxx..."));
}

TEST(LintRules, EveryRuleHasItsName) {
    EXPECT_EQ(15u, properties::rules().size());
    for (const auto& description : properties::rules()) {
        EXPECT_EQ(description.name, nameOf(description.rule));
        EXPECT_EQ(description.rule, properties::ruleNamed(description.name));
    }
    EXPECT_EQ(std::nullopt, properties::ruleNamed("No-separator"));
    EXPECT_TRUE(isDifference(properties::Rule::Difference));
    EXPECT_FALSE(isDifference(properties::Rule::DuplicateKey));
}

TEST(LintRules, ALongLineTakesTimeInProportion) {
    // A quadratic search would take minutes.
    EXPECT_EQ(1u, lint(std::string(4'000'000, 'a')).size());
    std::string separators;
    for (int i = 0; i < 200'000; ++i)
        separators += "k\n";
    EXPECT_EQ(200'000u, lint(separators).size());
}

TEST(LintRules, APlacedPropertyIsWhereItsKeyIs) {
    const auto placed = properties::placedProperties("# c\na=b\r\n c=d\nlost=");
    ASSERT_EQ(2u, placed.size());
    EXPECT_EQ("a", placed[0].key);
    EXPECT_EQ("b", placed[0].value);
    EXPECT_EQ(2u, placed[0].line);
    EXPECT_EQ("", placed[1].key);
    EXPECT_EQ("c=d", placed[1].value);
    EXPECT_EQ(3u, placed[1].line);
    EXPECT_EQ(1u, placed[1].column);
}

TEST(LintRules, AReadErrorCountsAsTheEnd) {
    std::istringstream stream("a==b\n");
    stream.setstate(std::ios_base::badbit);
    EXPECT_EQ(0u, properties::lint(stream).size());
}

} // namespace test
