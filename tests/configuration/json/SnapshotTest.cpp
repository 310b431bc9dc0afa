/// Snapshots as JSON documents.
#include <connector/configuration/json/Snapshot.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>

namespace {

using namespace connector::configuration;

std::string written(const std::vector<SourceSnapshot>& sources, const SecretFilter& isSecret = {}) {
    std::ostringstream stream;
    writeSnapshot(stream, sources, isSecret);
    return stream.str();
}

std::vector<SourceSnapshot> read(const std::string& text) {
    std::istringstream stream(text);
    return readSnapshot(stream);
}

std::string failureOf(const std::string& text) {
    try {
        read(text);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "no failure";
}

/// @return the snapshot of one source with one entry
std::vector<SourceSnapshot> holding(const OptionValue& value) {
    return {{"site", "net.", -5, true, {{"port", {value, false}}}}};
}

/// @return the document of one source with these entries
std::string withEntries(const std::string& entries) {
    return R"({"format": 1, "sources": [{"name": "site", "group": "", "order": 0, )"
           R"("readOnly": false, "entries": [)" +
           entries + "]}]}";
}

/// @return the document of one entry with this value
std::string withValue(const std::string& value) {
    return withEntries(R"({"key": "k", "value": )" + value + "}");
}

TEST(Snapshot, HasALineForEachSourceAndEachEntry) {
    EXPECT_EQ("{\"format\": 1, \"sources\": [\n"
              " {\"name\": \"override\", \"group\": \"\", \"order\": 0, \"readOnly\": false, "
              "\"entries\": []},\n"
              " {\"name\": \"site\", \"group\": \"net.\", \"order\": 100, \"readOnly\": true, "
              "\"entries\": [\n"
              "  {\"key\": \"host\", \"value\": {\"type\": \"string\", \"value\": \"a\\\"b\"}},\n"
              "  {\"key\": \"ports\", \"value\": {\"type\": \"uintArray\", \"value\": [80, "
              "4294967295]}}]}]}\n",
              written({{"override", "", 0, false, {}},
                       {"site",
                        "net.",
                        100,
                        true,
                        {{"ports", {std::vector<unsigned int>{80, 4294967295u}, false}},
                         {"host", {std::string("a\"b"), false}}}}}));
    EXPECT_EQ("{\"format\": 1, \"sources\": []}\n", written({}));
}

TEST(Snapshot, KeepsEveryValueExactly) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const OptionValue values[] = {
        true,
        false,
        std::numeric_limits<int>::min(),
        std::numeric_limits<int>::max(),
        0u,
        std::numeric_limits<unsigned int>::max(),
        0.0,
        1.0,
        0.1,
        -1.0 / 3,
        1e300,
        1e20,
        123456789012345678.0,
        std::numeric_limits<double>::denorm_min(),
        std::numeric_limits<double>::max(),
        infinity,
        -infinity,
        std::u16string(),
        std::u16string(u"gr\u00fcn \U0001F600 \uFEFF\0 x", 12),
        std::string(),
        std::string("\0\n\x7f\xc2\x9b\xe2\x80\xa8\xf0\x9f\x98\x80", 12),
        bytes,
        std::string("\xed\xa0\x80"),
        std::vector<bool>{},
        std::vector<bool>{true, false},
        std::vector<int>{},
        std::vector<int>{-1, 2},
        std::vector<unsigned int>{},
        std::vector<unsigned int>{3, 4},
        std::vector<double>{},
        std::vector<double>{1, 0.5, infinity},
        std::vector<std::string>{},
        std::vector<std::string>{"", "a", "\xff", bytes},
        std::vector<std::u16string>{},
        std::vector<std::u16string>{u"", u"\u00e9"},
    };
    for (const OptionValue& value : values) {
        const std::string text = written(holding(value));
        SCOPED_TRACE(text);
        const std::vector<SourceSnapshot> again = read(text);
        ASSERT_EQ(1u, again.size());
        ASSERT_EQ(1u, again[0].entries.count("port"));
        const SnapshotEntry& entry = again[0].entries.at("port");
        EXPECT_EQ(value.which(), entry.value.which());
        EXPECT_TRUE(value == entry.value);
        EXPECT_FALSE(entry.isMasked);
        EXPECT_EQ(text, written(again));
    }
}

TEST(Snapshot, KeepsTheSignOfZeroAndNan) {
    const auto again = [](double value) {
        return boost::get<double>(read(written(holding(value)))[0].entries.at("port").value);
    };
    EXPECT_TRUE(std::signbit(again(-0.0)));
    EXPECT_FALSE(std::signbit(again(0.0)));
    EXPECT_TRUE(std::isnan(again(std::numeric_limits<double>::quiet_NaN())));
}

TEST(Snapshot, KeepsEverySourceExactly) {
    const std::vector<SourceSnapshot> again =
        read(written({{"n\xff", "g\xff.", -1, false, {{"k\xff", {1, false}}, {"", {2, false}}}},
                      {"", "", -1, true, {}}}));
    ASSERT_EQ(2u, again.size());
    EXPECT_EQ("n\xff", again[0].name);
    EXPECT_EQ("g\xff.", again[0].group);
    EXPECT_EQ(-1, again[0].order);
    EXPECT_FALSE(again[0].readOnly);
    EXPECT_EQ(1u, again[0].entries.count("k\xff"));
    EXPECT_EQ(1u, again[0].entries.count(""));
    EXPECT_EQ("", again[1].name);
    EXPECT_TRUE(again[1].readOnly);
}

TEST(Snapshot, LeavesOutTheValuesOfSecrets) {
    const std::vector<SourceSnapshot> sources{
        {"site",
         "db.",
         0,
         false,
         {{"password", {std::string("hush"), false}}, {"user", {1, false}}}}};
    const std::string text =
        written(sources, [](const std::string& key) { return key == "db.password"; });
    EXPECT_EQ(text.npos, text.find("hush"));
    const std::vector<SourceSnapshot> again = read(text);
    EXPECT_TRUE(again[0].entries.at("password").isMasked);
    EXPECT_TRUE(OptionValue(std::string("******")) == again[0].entries.at("password").value);
    EXPECT_FALSE(again[0].entries.at("user").isMasked);
    EXPECT_EQ(text, written(again)); // without a filter: what is masked stays masked
}

TEST(Snapshot, CannotHoldTextThatIsNotUtf16) {
    std::ostringstream stream;
    try {
        writeSnapshot(stream, holding(std::u16string(1, u'\xd800')), {});
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ("Snapshot cannot be written: value of net.port in site: Text is not valid "
                     "UTF-16",
                     error.what());
    }
    EXPECT_EQ("", stream.str());
}

TEST(Snapshot, ToleratesOtherMembersAndAnyLayout) {
    const std::vector<SourceSnapshot> sources =
        read(R"({"sources":[{"entries":[{"value":{"value":8,"type":"double","unit":"s"},)"
             R"("masked":false,"key":"k","comment":null}],"readOnly":true,"order":1,"group":"",)"
             R"("name":"n","path":"x"}],"format":1,"host":"h"})");
    EXPECT_TRUE(OptionValue(8.0) == sources.at(0).entries.at("k").value);
}

TEST(Snapshot, ErrorsNameTheMember) {
    const struct {
        int line;
        std::string text;
        std::string failure;
    } rows[] = {
        {__LINE__, "", "not JSON: unexpected end of text"},
        {__LINE__, "[]", "not an object"},
        {__LINE__, "{}", "format: missing"},
        {__LINE__, R"({"format": 2})", "format: unknown format: 2"},
        {__LINE__, R"({"format": "1"})", "format: not a 32-bit integer"},
        {__LINE__, R"({"format": 1})", "sources: missing"},
        {__LINE__, R"({"format": 1, "sources": {}})", "sources: not an array"},
        {__LINE__, R"({"format": 1, "sources": [1]})", "sources[0]: not an object"},
        {__LINE__, R"({"format": 1, "sources": [{}]})", "sources[0].name: missing"},
        {__LINE__, R"({"format": 1, "sources": [{"name": 1}]})", "sources[0].name: not a string"},
        {__LINE__, R"({"format": 1, "sources": [{"name": {"base64": "!"}}]})",
         "sources[0].name: not a string"},
        {__LINE__, R"({"format": 1, "sources": [{"name": "n"}]})", "sources[0].group: missing"},
        {__LINE__, R"({"format": 1, "sources": [{"name": "n", "group": "g"}]})",
         "sources[0].group: does not end in a dot: g"},
        {__LINE__, R"({"format": 1, "sources": [{"name": "n", "group": "", "order": 2147483648}]})",
         "sources[0].order: not a 32-bit integer"},
        {__LINE__,
         R"({"format": 1, "sources": [{"name": "n", "group": "", "order": 0, "readOnly": 0}]})",
         "sources[0].readOnly: not a boolean"},
        {__LINE__,
         R"({"format": 1, "sources": [{"name": "n", "group": "", "order": 0, "readOnly": true}]})",
         "sources[0].entries: missing"},
        {__LINE__, withEntries("[]"), "sources[0].entries[0]: not an object"},
        {__LINE__, withEntries("{}"), "sources[0].entries[0].key: missing"},
        {__LINE__, withEntries(R"({"key": null})"), "sources[0].entries[0].key: not a string"},
        {__LINE__, withEntries(R"({"key": "k"})"), "sources[0].entries[0].value: missing"},
        {__LINE__, withEntries(R"({"key": "k", "masked": 1})"),
         "sources[0].entries[0].masked: not a boolean"},
        {__LINE__, withEntries(R"({"key": "k", "masked": true}, {"key": "k", "masked": true})"),
         "sources[0].entries[1].key: given twice: k"},
        {__LINE__, withValue("1"), "sources[0].entries[0].value: not an object"},
        {__LINE__, withValue("{}"), "sources[0].entries[0].value.type: missing"},
        {__LINE__, withValue(R"({"type": 1})"), "sources[0].entries[0].value.type: not a string"},
        {__LINE__, withValue(R"({"type": "INT", "value": 1})"),
         "sources[0].entries[0].value.type: unknown type: INT"},
        {__LINE__, withValue(R"({"type": "int"})"), "sources[0].entries[0].value.value: missing"},
        {__LINE__, withValue(R"({"type": "int", "value": 1.5})"),
         "sources[0].entries[0].value.value: not of this type: int"},
        {__LINE__, withValue(R"({"type": "int", "value": 2147483648})"),
         "sources[0].entries[0].value.value: not of this type: int"},
        {__LINE__, withValue(R"({"type": "uint", "value": -1})"),
         "sources[0].entries[0].value.value: not of this type: uint"},
        {__LINE__, withValue(R"({"type": "bool", "value": 1})"),
         "sources[0].entries[0].value.value: not of this type: bool"},
        {__LINE__, withValue(R"({"type": "double", "value": "1"})"),
         "sources[0].entries[0].value.value: not of this type: double"},
        {__LINE__, withValue(R"({"type": "string", "value": 12})"),
         "sources[0].entries[0].value.value: not of this type: string"},
        {__LINE__, withValue(R"({"type": "string", "value": {"base64": "YQ"}})"),
         "sources[0].entries[0].value.value: not of this type: string"},
        {__LINE__, withValue(R"({"type": "string", "value": {"base64": "YQ==\n"}})"),
         "sources[0].entries[0].value.value: not of this type: string"},
        {__LINE__, withValue(R"({"type": "ustring", "value": {"base64": "YQ=="}})"),
         "sources[0].entries[0].value.value: not of this type: ustring"},
        {__LINE__, withValue(R"({"type": "intArray", "value": 5})"),
         "sources[0].entries[0].value.value: not of this type: intArray"},
        {__LINE__, withValue(R"({"type": "intArray", "value": [1, "x"]})"),
         "sources[0].entries[0].value.value[1]: not an element of such an array"},
        {__LINE__,
         R"({"format": 1, "sources": [)"
         R"({"name": "n", "group": "", "order": 5, "readOnly": true, "entries": []},)"
         R"({"name": "n", "group": "", "order": 5, "readOnly": true, "entries": []}]})",
         "sources[1].name: given twice: n"},
        {__LINE__,
         R"({"format": 1, "sources": [)"
         R"({"name": "n", "group": "", "order": 5, "readOnly": true, "entries": []},)"
         R"({"name": "m", "group": "", "order": 4, "readOnly": true, "entries": []}]})",
         "sources[1].order: less than that of the source before it: 4"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE("line " + std::to_string(row.line) + ": " + row.text);
        EXPECT_EQ("Not a valid snapshot: " + row.failure, failureOf(row.text));
    }
}

TEST(Snapshot, EveryPrefixAndEveryBrokenByteIsRefusedOrRead) {
    const std::string text = written(holding(std::vector<std::string>{"a", "\xff"}));
    for (std::size_t length = 0; length + 1 < text.size(); ++length)
        EXPECT_NE("no failure", failureOf(text.substr(0, length)));
    for (std::size_t place = 0; place < text.size(); ++place) {
        for (const char byte : {'\0', '"', '9', '{', '\xff', '\xed'}) {
            std::string broken = text;
            broken[place] = byte;
            const std::string failure = failureOf(broken);
            EXPECT_TRUE(failure == "no failure" || failure.rfind("Not a valid snapshot: ", 0) == 0)
                << failure;
        }
    }
}

} // namespace
