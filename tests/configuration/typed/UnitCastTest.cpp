/// Durations and byte sizes.
#include "CastTable.hpp"

#include <chrono>
#include <cstdint>
#include <ostream>

namespace connector::configuration {

void PrintTo(ByteSize size, std::ostream* stream) {
    *stream << size.bytes << " bytes";
}

} // namespace connector::configuration

namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
using connector::configuration::ByteSize;
using std::chrono::duration;
using std::chrono::nanoseconds;
using std::chrono::seconds;
using test::expectTable;

constexpr auto no = std::nullopt;

TEST(DurationCast, IsNumbersWithUnitsFromLargeToSmall) {
    expectTable<nanoseconds>({{__LINE__, "1h30m"s, 90min},
                              {__LINE__, "250ms"s, 250ms},
                              {__LINE__, "1.5s"s, 1500ms},
                              {__LINE__, "2d3h4m5s6ms7us8ns"s, 51h + 4min + 5s + 6ms + 7us + 8ns},
                              {__LINE__, "1d0.5h"s, 24h + 30min},
                              {__LINE__, "-1h30m"s, -90min},
                              {__LINE__, "0"s, 0ns},
                              {__LINE__, "0s"s, 0ns},
                              {__LINE__, "-0s"s, 0ns},
                              {__LINE__, "007s"s, 7s},
                              {__LINE__, "1.500000000000000s"s, 1500ms},
                              {__LINE__, "9223372036854775807ns"s, nanoseconds::max()},
                              {__LINE__, "-9223372036854775808ns"s, nanoseconds::min()},
                              {__LINE__, "9223372036854775808ns"s, no},
                              {__LINE__, "-9223372036854775809ns"s, no},
                              {__LINE__, "999999999999999999999999999999999999999d"s, no},
                              {__LINE__, "1"s, no},
                              {__LINE__, "00"s, no},
                              {__LINE__, "-0"s, no},
                              {__LINE__, "0.0"s, no},
                              {__LINE__, ""s, no},
                              {__LINE__, "-"s, no},
                              {__LINE__, "s"s, no},
                              {__LINE__, "+1s"s, no},
                              {__LINE__, "1 s"s, no},
                              {__LINE__, " 1s"s, no},
                              {__LINE__, "1s "s, no},
                              {__LINE__, "1S"s, no},
                              {__LINE__, "1m1m"s, no},
                              {__LINE__, "1m1h"s, no},
                              {__LINE__, "1.5h1m"s, no},
                              {__LINE__, ".5s"s, no},
                              {__LINE__, "5.s"s, no},
                              {__LINE__, "1.5.5s"s, no},
                              {__LINE__, "1h-1m"s, no},
                              {__LINE__, "--1s"s, no},
                              {__LINE__, "1s5"s, no},
                              {__LINE__, "1e3s"s, no},
                              {__LINE__, "1w"s, no},
                              {__LINE__, "0.5ns"s, no},
                              {__LINE__, 0, no},
                              {__LINE__, 1.5, no},
                              {__LINE__, true, no}},
                             "duration", "list of duration");
}

TEST(DurationCast, MustFitExactly) {
    expectTable<seconds>({{__LINE__, "90m"s, 5400s},
                          {__LINE__, "0.5m"s, 30s},
                          {__LINE__, "1.5s"s, no},
                          {__LINE__, "1500ms"s, no},
                          {__LINE__, "2000ms"s, 2s}},
                         "duration", "list of duration");
    using Thirds = duration<std::int8_t, std::ratio<1, 3>>;
    expectTable<Thirds>({{__LINE__, "1s"s, Thirds(3)},
                         {__LINE__, "-42s"s, Thirds(-126)},
                         {__LINE__, "43s"s, no},
                         {__LINE__, "0.5s"s, no}},
                        "duration", "list of duration");
    using Picoseconds = duration<std::int64_t, std::pico>;
    expectTable<Picoseconds>({{__LINE__, "0.001ns"s, Picoseconds(1)}, {__LINE__, "0.0001ns"s, no}},
                             "duration", "list of duration");
    using Unsigned = duration<unsigned, std::milli>;
    expectTable<Unsigned>({{__LINE__, "4294967295ms"s, Unsigned(4294967295u)},
                           {__LINE__, "4294967296ms"s, no},
                           {__LINE__, "-1ms"s, no}},
                          "duration", "list of duration");
}

TEST(DurationCast, IsRoundedForFloatingPoint) {
    using Seconds = duration<double>;
    expectTable<Seconds>({{__LINE__, "0.1s"s, Seconds(0.1)},
                          {__LINE__, "-100ms"s, Seconds(-0.1)},
                          {__LINE__, "1h30m"s, Seconds(5400)},
                          {__LINE__, "0.123456789012345678901234567890123456789012345s"s,
                           Seconds(0.123456789012345678901234567890123456789012345)},
                          {__LINE__, "0"s, Seconds(0)},
                          {__LINE__, "1"s, no},
                          {__LINE__, 1.5, no}},
                         "duration", "list of duration");
    using Brief = duration<float, std::nano>;
    const std::string tooLong(30, '9');
    expectTable<Brief>({{__LINE__, "1s"s, Brief(1e9f)}, {__LINE__, tooLong + "d", no}}, "duration",
                       "list of duration");
}

TEST(ByteSizeCast, IsAWholeNumberOfBytes) {
    expectTable<ByteSize>(
        {{__LINE__, 512, ByteSize{512}},
         {__LINE__, 4294967295u, ByteSize{4294967295}},
         {__LINE__, "512"s, ByteSize{512}},
         {__LINE__, "512B"s, ByteSize{512}},
         {__LINE__, "1kB"s, ByteSize{1000}},
         {__LINE__, "2MB"s, ByteSize{2000000}},
         {__LINE__, "3GB"s, ByteSize{3000000000}},
         {__LINE__, "4TB"s, ByteSize{4000000000000}},
         {__LINE__, "1KiB"s, ByteSize{1024}},
         {__LINE__, "1MiB"s, ByteSize{1048576}},
         {__LINE__, "1GiB"s, ByteSize{1073741824}},
         {__LINE__, "1TiB"s, ByteSize{1099511627776}},
         {__LINE__, "1.5KiB"s, ByteSize{1536}},
         {__LINE__, "0.0009765625KiB"s, ByteSize{1}},
         {__LINE__, "0.0000000000009094947017729282379150390625TiB"s, ByteSize{1}},
         {__LINE__, "1.0"s, ByteSize{1}},
         {__LINE__, "0"s, ByteSize{0}},
         {__LINE__, "18446744073709551615"s, ByteSize{18446744073709551615u}},
         {__LINE__, "18446744073709551616"s, no},
         {__LINE__, "99999999TiB"s, no},
         {__LINE__, "0.5"s, no},
         {__LINE__, "1.5B"s, no},
         {__LINE__, "0.001KiB"s, no},
         {__LINE__, "1KB"s, no},
         {__LINE__, "1kiB"s, no},
         {__LINE__, "1mb"s, no},
         {__LINE__, "1K"s, no},
         {__LINE__, "1 kB"s, no},
         {__LINE__, " 1"s, no},
         {__LINE__, "kB"s, no},
         {__LINE__, ".5kB"s, no},
         {__LINE__, "5.kB"s, no},
         {__LINE__, "-1"s, no},
         {__LINE__, "+1"s, no},
         {__LINE__, "0x10"s, no},
         {__LINE__, ""s, no},
         {__LINE__, -1, no},
         {__LINE__, 1.0, no},
         {__LINE__, true, no}},
        "byte size", "list of byte size");
}

} // namespace
