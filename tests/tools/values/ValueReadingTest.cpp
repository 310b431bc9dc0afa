#include "values/ValueReading.hpp"

#include "values/ValueText.hpp"
#include "values/WrongArguments.hpp"

#include "support/Expect.hpp"

#include <limits>

namespace {

using namespace connector_config;
using namespace std::string_literals;

struct Row {
    int line;
    ValueType type;
    std::string text;
    OptionValue value;
};

void expectRead(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.line);
        const OptionValue value = readValue("k", row.type, row.text);
        EXPECT_EQ(row.type, typeOf(value));
        EXPECT_TRUE(row.value == value) << plainText(value);
    }
}

TEST(ReadValue, ReadsScalars) {
    expectRead({
        {__LINE__, ValueType::Bool, "true", true},
        {__LINE__, ValueType::Bool, "false", false},
        {__LINE__, ValueType::Int, "0", 0},
        {__LINE__, ValueType::Int, "-2147483648", std::numeric_limits<int>::min()},
        {__LINE__, ValueType::Int, "2147483647", std::numeric_limits<int>::max()},
        {__LINE__, ValueType::Uint, "4294967295", 4294967295u},
        {__LINE__, ValueType::Double, "1", 1.0},
        {__LINE__, ValueType::Double, "-0.5e-3", -0.0005},
        {__LINE__, ValueType::Double, "5e-324", 5e-324},
        {__LINE__, ValueType::Double, "1.7976931348623157e308", 1.7976931348623157e308},
        {__LINE__, ValueType::Double, "0.1", 0.1},
        {__LINE__, ValueType::String, "", ""s},
        {__LINE__, ValueType::String, "\xff \n", "\xff \n"s},
        {__LINE__, ValueType::Ustring, "", u""s},
        {__LINE__, ValueType::Ustring, "\xc3\xa9\xf0\x9f\x98\x80", u"\u00e9\U0001F600"s},
    });
}

TEST(ReadValue, ReadsArraysAsJson) {
    expectRead({
        {__LINE__, ValueType::BoolArray, "[true,false]", std::vector<bool>{true, false}},
        {__LINE__, ValueType::IntArray, " [ -2147483648 , 2147483647 ] ",
         std::vector<int>{std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}},
        {__LINE__, ValueType::UintArray, "[0,4294967295]", std::vector<unsigned>{0, 4294967295u}},
        {__LINE__, ValueType::DoubleArray, "[1,-2.5,1e3,18446744073709551615]",
         std::vector<double>{1, -2.5, 1000, 18446744073709551615.0}},
        {__LINE__, ValueType::StringArray, R"(["a","\u00e9\u0000\"",""])",
         std::vector<std::string>{"a", "\xc3\xa9\0\""s, ""}},
        {__LINE__, ValueType::UstringArray, R"(["\ud83d\ude00"])",
         std::vector<std::u16string>{u"\U0001F600"}},
        {__LINE__, ValueType::BoolArray, "[]", std::vector<bool>{}},
        {__LINE__, ValueType::IntArray, "[]", std::vector<int>{}},
        {__LINE__, ValueType::UintArray, "[]", std::vector<unsigned>{}},
        {__LINE__, ValueType::DoubleArray, "[]", std::vector<double>{}},
        {__LINE__, ValueType::StringArray, "[]", std::vector<std::string>{}},
        {__LINE__, ValueType::UstringArray, "[]", std::vector<std::u16string>{}},
    });
}

TEST(ReadValue, NamesTypeAndTextOfAnInvalidValue) {
    const struct {
        int line;
        ValueType type;
        std::string text;
    } rows[] = {
        {__LINE__, ValueType::Bool, ""},
        {__LINE__, ValueType::Bool, "TRUE"},
        {__LINE__, ValueType::Bool, "1"},
        {__LINE__, ValueType::Bool, "true "},
        {__LINE__, ValueType::Int, ""},
        {__LINE__, ValueType::Int, " 1"},
        {__LINE__, ValueType::Int, "1 "},
        {__LINE__, ValueType::Int, "1.0"},
        {__LINE__, ValueType::Int, "0x10"},
        {__LINE__, ValueType::Int, "2147483648"},
        {__LINE__, ValueType::Int, "-2147483649"},
        {__LINE__, ValueType::Uint, "-1"},
        {__LINE__, ValueType::Uint, "4294967296"},
        {__LINE__, ValueType::Double, ""},
        {__LINE__, ValueType::Double, "1,5"},
        {__LINE__, ValueType::Double, "inf"},
        {__LINE__, ValueType::Double, "-infinity"},
        {__LINE__, ValueType::Double, "nan"},
        {__LINE__, ValueType::Double, "1e400"},
        {__LINE__, ValueType::Double, "1.5x"},
        {__LINE__, ValueType::Ustring, "\xff"},
        {__LINE__, ValueType::Ustring, "\xed\xa0\x80"},
        {__LINE__, ValueType::BoolArray, "[1]"},
        {__LINE__, ValueType::BoolArray, "[\"true\"]"},
        {__LINE__, ValueType::IntArray, ""},
        {__LINE__, ValueType::IntArray, "1"},
        {__LINE__, ValueType::IntArray, "null"},
        {__LINE__, ValueType::IntArray, "{}"},
        {__LINE__, ValueType::IntArray, "[1"},
        {__LINE__, ValueType::IntArray, "[1,]"},
        {__LINE__, ValueType::IntArray, "[1]x"},
        {__LINE__, ValueType::IntArray, "[1][2]"},
        {__LINE__, ValueType::IntArray, "[1]\0x"s},
        {__LINE__, ValueType::IntArray, "[1]\0"s},
        {__LINE__, ValueType::IntArray, "[[1]]"},
        {__LINE__, ValueType::IntArray, "[{}]"},
        {__LINE__, ValueType::IntArray, "[1,null]"},
        {__LINE__, ValueType::IntArray, "[true]"},
        {__LINE__, ValueType::IntArray, "[\"1\"]"},
        {__LINE__, ValueType::IntArray, "[1.0]"},
        {__LINE__, ValueType::IntArray, "[01]"},
        {__LINE__, ValueType::IntArray, "[2147483648]"},
        {__LINE__, ValueType::IntArray, "[-2147483649]"},
        {__LINE__, ValueType::IntArray, "[18446744073709551615]"},
        {__LINE__, ValueType::UintArray, "[-1]"},
        {__LINE__, ValueType::UintArray, "[4294967296]"},
        {__LINE__, ValueType::DoubleArray, "[1e400]"},
        {__LINE__, ValueType::DoubleArray, "[NaN]"},
        {__LINE__, ValueType::DoubleArray, "[\"1\"]"},
        {__LINE__, ValueType::DoubleArray, "[true]"},
        {__LINE__, ValueType::StringArray, "[1]"},
        {__LINE__, ValueType::StringArray, "[\"a\nb\"]"},
        {__LINE__, ValueType::StringArray, "[\"\xff\"]"},
        {__LINE__, ValueType::StringArray, R"(["\ud800"])"},
        {__LINE__, ValueType::UstringArray, "[1]"},
        {__LINE__, ValueType::UstringArray, R"(["\ude00"])"},
        {__LINE__, ValueType::StringArray, std::string(100000, '[')},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        test::expectThrows<WrongArguments>("Value of k does not convert to " + typeName(row.type) +
                                               ": " + row.text.c_str(),
                                           [&row] { readValue("k", row.type, row.text); });
    }
}

TEST(ReadValue, MasksAnInvalidSecret) {
    for (const ValueType type : {ValueType::Int, ValueType::Bool, ValueType::IntArray})
        test::expectThrows<WrongArguments>("Value of k does not convert to " + typeName(type) +
                                               ": ******",
                                           [type] { readValue("k", type, "hush", true); });
}

TEST(PlainText, OfAnyOtherTypeThanTextReadsBackAsTheSameValue) {
    const OptionValue values[] = {
        true,
        -5,
        4294967295u,
        0.1,
        1e21,
        5e-324,
        1e-7,
        std::vector<bool>{true, false},
        std::vector<int>{-1},
        std::vector<unsigned>{4294967295u},
        std::vector<double>{1, 0.1, 1e300},
        std::vector<std::string>{"a\n\x7f\"\\/", ""},
        std::vector<std::u16string>{u"\U0001F600\u0085"},
    };
    for (const OptionValue& value : values)
        EXPECT_TRUE(value == readValue("k", typeOf(value), plainText(value))) << plainText(value);
}

TEST(TypeNames, AreTheTagsOfTheJsonForm) {
    const OptionValue values[] = {true,
                                  1,
                                  1u,
                                  1.0,
                                  std::u16string(),
                                  std::string(),
                                  std::vector<bool>(),
                                  std::vector<int>(),
                                  std::vector<unsigned>(),
                                  std::vector<double>(),
                                  std::vector<std::string>(),
                                  std::vector<std::u16string>()};
    const char* const names[] = {"bool",      "int",         "uint",        "double",
                                 "ustring",   "string",      "boolArray",   "intArray",
                                 "uintArray", "doubleArray", "stringArray", "ustringArray"};
    for (std::size_t i = 0; i < std::size(values); ++i)
        EXPECT_EQ(names[i], typeName(typeOf(values[i])));
}

TEST(TypeNames, ConvertBackToTheirTypes) {
    for (int i = 0; i < 12; ++i) {
        const auto type = static_cast<ValueType>(i);
        EXPECT_EQ(type, typeFromName(typeName(type)));
    }
    for (const char* name : {"", "Int", "int ", "float", "array", "string[]"})
        EXPECT_EQ(std::nullopt, typeFromName(name)) << name;
}

} // namespace
