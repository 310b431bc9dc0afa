/// Writes a JSON Schema, and cases for a validator: lines of JSON with a document and whether the
/// schema of the library takes it.
#include "Net.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>

#include <iostream>
#include <string>
#include <vector>

namespace {

using namespace connector::configuration;

struct Types {
    bool flag = true;
    std::int8_t tiny = -5;
    std::uint64_t huge = 1;
    double ratio = 0.5;
    float rough = 0.25;
    std::string text = "a\"b\n";
    std::u16string wide = u"\u00E4";
    std::chrono::milliseconds wait{1500};
    ByteSize size{2048};
    std::filesystem::path path = "/x";
    test::Mode mode = test::Mode::Plain;
    std::string color = "red";
    std::vector<int> numbers{1, 2};
    std::vector<std::string> names;
    std::vector<ByteSize> sizes{{1}};
    double least = 0;
    int step = 4;
    std::filesystem::path empty;
    double infinite = HUGE_VAL;
};

OptionSchema<Types> typesSchema() {
    return OptionSchema<Types>("t")
        .option("flag", &Types::flag, "a \"flag\"")
        .option("tiny", &Types::tiny, "")
        .option("huge", &Types::huge, "")
        .option("ratio", &Types::ratio, "", inRange(0, 1.5))
        .option("rough", &Types::rough, "")
        .required("text", &Types::text, "", notEmpty())
        .option("wide", &Types::wide, "")
        .option("wait", &Types::wait, "")
        .option("size", &Types::size, "")
        .option("path", &Types::path, "")
        .option("mode", &Types::mode, "", oneOf({test::Mode::Plain}))
        .option("color", &Types::color, "", oneOf({"red", "blue"}))
        .option("numbers", &Types::numbers, "", notEmpty())
        .option("names", &Types::names, "")
        .option("sizes", &Types::sizes, "")
        .option("least", &Types::least, "", inRange(-1, 100), inRange(0, 1000))
        .option("step", &Types::step, "", inRange(-1e300, 8), oneOf({4, 6, 9}))
        .option("empty", &Types::empty, "")
        .option("infinite", &Types::infinite, "");
}

struct Case {
    const char* key;
    OptionValue value;
    std::string json;
};

const std::vector<Case>& cases() {
    using Text = std::string;
    static const std::vector<Case> cases{
        {"flag", false, "false"},
        {"flag", 1, "1"},
        {"tiny", -128, "-128"},
        {"tiny", -129, "-129"},
        {"tiny", 127, "127"},
        {"tiny", 128, "128"},
        {"tiny", 1.5, "1.5"},
        {"huge", -1, "-1"},
        {"huge", 7, "7"},
        {"ratio", 1.5, "1.5"},
        {"ratio", 1.75, "1.75"},
        {"ratio", -0.5, "-0.5"},
        {"rough", 1, "1"},
        {"rough", true, "true"},
        {"text", Text(), "\"\""},
        {"text", Text("x"), "\"x\""},
        {"text", std::vector<int>{1}, "[1]"},
        {"wait", Text("1h30m"), "\"1h30m\""},
        {"wait", Text("1.5s"), "\"1.5s\""},
        {"wait", Text("0"), "\"0\""},
        {"wait", Text("-2d3ms"), "\"-2d3ms\""},
        {"wait", Text("30m1h"), "\"30m1h\""},
        {"wait", Text("1.5h1m"), "\"1.5h1m\""},
        {"wait", Text("1"), "\"1\""},
        {"wait", Text(), "\"\""},
        {"wait", 5, "5"},
        {"size", Text("64KiB"), "\"64KiB\""},
        {"size", Text("1.5MB"), "\"1.5MB\""},
        {"size", Text("12"), "\"12\""},
        {"size", Text("1KB"), "\"1KB\""},
        {"size", Text("-1"), "\"-1\""},
        {"path", Text("/etc"), "\"/etc\""},
        {"path", Text(), "\"\""},
        {"mode", Text("plain"), "\"plain\""},
        {"mode", Text("secure"), "\"secure\""},
        {"mode", Text("x"), "\"x\""},
        {"color", Text("blue"), "\"blue\""},
        {"color", Text("green"), "\"green\""},
        {"numbers", std::vector<int>{3}, "[3]"},
        {"numbers", std::vector<int>{}, "[]"},
        {"numbers", std::vector<double>{1.5}, "[1.5]"},
        {"names", std::vector<Text>{"a"}, "[\"a\"]"},
        {"sizes", std::vector<Text>{"1kB"}, "[\"1kB\"]"},
        {"sizes", std::vector<Text>{"x"}, "[\"x\"]"},
        {"least", 100, "100"},
        {"least", 101, "101"},
        {"least", -1, "-1"},
        {"least", 0, "0"},
        {"step", 6, "6"},
        {"step", 5, "5"},
        {"step", 9, "9"},
        {"unknown", 1, "1"},
    };
    return cases;
}

bool accepts(const Case& tried) {
    const auto configuration = std::make_shared<ConfigurationImpl>();
    configuration->set("t.text", "given").get();
    configuration->set(std::string("t.") + tried.key, tried.value).get();
    return typesSchema().check(*configuration, UnknownKeys::Refused).empty();
}

} // namespace

int main() {
    std::cout << typesSchema().jsonSchema() << '\n';
    std::cout << "{\"accepted\":false,\"document\":{}}\n"; // what is required is missing
    for (const Case& tried : cases()) {
        const std::string given = std::string(tried.key) == "text" ? "" : "\"t.text\":\"given\",";
        std::cout << "{\"accepted\":" << (accepts(tried) ? "true" : "false") << ",\"document\":{"
                  << given << "\"t." << tried.key << "\":" << tried.json << "}}\n";
    }
    std::cout << test::netSchema().jsonSchema() << '\n';
}
