/// Flags and numbers.
#include "CastTable.hpp"

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>

namespace {

using namespace std::string_literals;
using test::CastRow;
using test::expectTable;
using test::optionCast;
using test::OptionValue;

constexpr auto no = std::nullopt;

TEST(FlagCast, TextSaysYesOrNoAndNumbersSayNothing) {
    expectTable<bool>({{__LINE__, true, true},
                       {__LINE__, false, false},
                       {__LINE__, "true"s, true},
                       {__LINE__, "FALSE"s, false},
                       {__LINE__, "Yes"s, true},
                       {__LINE__, "no"s, false},
                       {__LINE__, "oN"s, true},
                       {__LINE__, "off"s, false},
                       {__LINE__, "1"s, true},
                       {__LINE__, "0"s, false},
                       {__LINE__, ""s, no},
                       {__LINE__, " true"s, no},
                       {__LINE__, "y"s, no},
                       {__LINE__, "10"s, no},
                       {__LINE__,
                        "tr\xC3\xBC"
                        "e"s,
                        no},
                       {__LINE__, "true\xFF"s, no},
                       {__LINE__, 1, no},
                       {__LINE__, 0u, no},
                       {__LINE__, 1.0, no}},
                      "bool", "boolArray");
}

TEST(IntegerCast, TextIsDecimalWithAMinusSignOrHexadecimal) {
    expectTable<int>({{__LINE__, 7, 7},
                      {__LINE__, 7u, 7},
                      {__LINE__, -7.0, -7},
                      {__LINE__, "8080"s, 8080},
                      {__LINE__, "-1"s, -1},
                      {__LINE__, "-0"s, 0},
                      {__LINE__, "007"s, 7},
                      {__LINE__, "0x1F"s, 31},
                      {__LINE__, "0xff"s, 255},
                      {__LINE__, "0x"s, no},
                      {__LINE__, "0X1F"s, no},
                      {__LINE__, "0x-1"s, no},
                      {__LINE__, "-0x1"s, no},
                      {__LINE__, "+1"s, no},
                      {__LINE__, ""s, no},
                      {__LINE__, "-"s, no},
                      {__LINE__, " 1"s, no},
                      {__LINE__, "1 "s, no},
                      {__LINE__, "1.0"s, no},
                      {__LINE__, "1e3"s, no},
                      {__LINE__, "1\0"s, no},
                      {__LINE__, "12a"s, no},
                      {__LINE__, "99999999999999999999"s, no},
                      {__LINE__, true, no},
                      {__LINE__, 1.5, no},
                      {__LINE__, std::nan(""), no},
                      {__LINE__, HUGE_VAL, no},
                      {__LINE__, 1e300, no},
                      {__LINE__, 4294967295u, no}},
                     "int", "intArray");
}

TEST(IntegerCast, UnsignedTypesTakeNoMinusSign) {
    expectTable<unsigned int>({{__LINE__, 7, 7u},
                               {__LINE__, 4294967295u, 4294967295u},
                               {__LINE__, -0.0, 0u},
                               {__LINE__, "4294967295"s, 4294967295u},
                               {__LINE__, "0xFFFFFFFF"s, 4294967295u},
                               {__LINE__, "-0"s, no},
                               {__LINE__, "-1"s, no},
                               {__LINE__, -1, no},
                               {__LINE__, -1.0, no},
                               {__LINE__, 4294967296.0, no},
                               {__LINE__, "4294967296"s, no},
                               {__LINE__, false, no}},
                              "uint", "uintArray");
}

template <typename T>
std::string nameOfInteger() {
    const std::string name = std::is_signed_v<T> ? "int" : "uint";
    return sizeof(T) == 4 ? name : name + std::to_string(8 * sizeof(T));
}

template <typename T>
class IntegerLimits : public ::testing::Test {};

using Integers = ::testing::Types<std::int8_t, std::uint8_t, std::int16_t, std::uint16_t,
                                  std::int32_t, std::uint32_t, std::int64_t, std::uint64_t>;
struct IntegerNames {
    template <typename T>
    static std::string GetName(int) {
        return (std::is_signed_v<T> ? "Int" : "Uint") + std::to_string(8 * sizeof(T));
    }
};
TYPED_TEST_SUITE(IntegerLimits, Integers, IntegerNames);

/// @return the decimal text of the number next to the limit, beyond it
std::string beyond(std::string limit) {
    std::size_t at = limit.size() - 1;
    while (limit[at] == '9')
        limit[at--] = '0';
    ++limit[at];
    return limit;
}

TYPED_TEST(IntegerLimits, AreReachedAndNotPassed) {
    using Limits = std::numeric_limits<TypeParam>;
    const std::string name = nameOfInteger<TypeParam>();
    const std::string list = sizeof(TypeParam) == 4 ? name + "Array" : "list of " + name;
    const std::string least = std::to_string(Limits::min());
    const std::string greatest = std::to_string(Limits::max());
    expectTable<TypeParam>({{__LINE__, least, Limits::min()},
                            {__LINE__, greatest, Limits::max()},
                            {__LINE__, std::is_signed_v<TypeParam> ? beyond(least) : "-1"s, no},
                            {__LINE__, beyond(greatest), no}},
                           name, list);
}

TYPED_TEST(IntegerLimits, HoldForDoubles) {
    using Limits = std::numeric_limits<TypeParam>;
    const double tooGreat = std::ldexp(1.0, Limits::digits); // one more than the greatest
    const auto least = static_cast<double>(Limits::min());
    const std::string name = nameOfInteger<TypeParam>();
    const std::string list = sizeof(TypeParam) == 4 ? name + "Array" : "list of " + name;
    const double inside = std::nextafter(tooGreat, 0);
    const double whole = std::floor(inside);
    expectTable<TypeParam>({{__LINE__, least, Limits::min()},
                            {__LINE__, whole, static_cast<TypeParam>(whole)},
                            {__LINE__, tooGreat, no},
                            {__LINE__, std::nextafter(std::min(least, -1.0), -HUGE_VAL), no}},
                           name, list);
}

TEST(DoubleCast, TextIsWhatFromCharsReads) {
    expectTable<double>({{__LINE__, 1.5, 1.5},
                         {__LINE__, -2147483647, -2147483647.0},
                         {__LINE__, 4294967295u, 4294967295.0},
                         {__LINE__, "1.5"s, 1.5},
                         {__LINE__, "-.5e-3"s, -0.0005},
                         {__LINE__, "5."s, 5.0},
                         {__LINE__, "1e308"s, 1e308},
                         {__LINE__, "1e309"s, no},
                         {__LINE__, "+1"s, no},
                         {__LINE__, "1,5"s, no},
                         {__LINE__, ""s, no},
                         {__LINE__, "inf"s, no},
                         {__LINE__, "-infinity"s, no},
                         {__LINE__, "nan"s, no},
                         {__LINE__, "NaN(1)"s, no},
                         {__LINE__, "0x10"s, no},
                         {__LINE__, " 1"s, no},
                         {__LINE__, "1 "s, no},
                         {__LINE__, true, no}},
                        "double", "doubleArray");
    EXPECT_TRUE(std::isnan(optionCast<double>(std::nan("")))); // a double stays what it is
}

TEST(FloatCast, IsRoundedAndRangeChecked) {
    constexpr float greatest = std::numeric_limits<float>::max();
    expectTable<float>({{__LINE__, 0.1, 0.1f},
                        {__LINE__, 16777217, 16777216.0f},
                        {__LINE__, 4294967295u, 4294967296.0f},
                        {__LINE__, "0.1"s, 0.1f},
                        {__LINE__, "3.4028235e38"s, greatest},
                        {__LINE__, static_cast<double>(greatest), greatest},
                        {__LINE__, -0x1.fffffefp127, -greatest}, // beyond, and rounds to it
                        {__LINE__, 0x1.ffffffp127, no},
                        {__LINE__, -1e39, no},
                        {__LINE__, "1e39"s, no},
                        {__LINE__, "inf"s, no},
                        {__LINE__, HUGE_VAL, HUGE_VALF}, // exact
                        {__LINE__, false, no}},
                       "float", "list of float");
}

TEST(NumberCast, ListsAreNoNumbers) {
    const std::vector<test::RefusedRow> lists{{__LINE__, std::vector<int>{1}},
                                              {__LINE__, std::vector<std::string>{"1"}},
                                              {__LINE__, std::vector<bool>{true}}};
    test::expectRefused<bool>(lists, "bool");
    test::expectRefused<int>(lists, "int");
    test::expectRefused<std::uint64_t>(lists, "uint64");
    test::expectRefused<double>(lists, "double");
    test::expectRefused<float>(lists, "float");
}

} // namespace
