#include "service/support/Mutations.hpp"

#include <algorithm>
#include <iterator>

namespace test {

namespace {

const char* const originals[] = {
    R"({"id":1,"type":"connector/configuration/ConfigurationGet","message":{"key":"net.port"}})",
    R"({"id":"a","type":"connector/configuration/ConfigurationSet","message":{"key":"k","source":"override","value":{"type":"intArray","value":[1,-2,3]}}})",
    R"({"id":[1,{"b":null}],"type":"connector/configuration/ConfigurationSet","message":{"key":"k","value":{"type":"double","value":1.5e10}}})",
    R"({"id":{},"type":"connector/configuration/ConfigurationSet","message":{"key":"\u00e4","value":{"type":"ustring","value":"\ud83d\ude00"}}})",
    R"({"type":"connector/configuration/ConfigurationKeys","message":{}})",
    R"({"id":true,"type":"connector/configuration/AddPropertyFileSource","message":{"name":"n","group":"g","order":7,"readOnly":false,"path":"/no/such/file"}})",
    R"({"id":-0.5,"type":"connector/configuration/ConfigurationKeysResponse","message":{"keys":["a"]}})",
    R"({"id":null,"type":"connector/Message","message":{}})",
};

const char* const fragments[] = {
    "\"",
    "{",
    "}",
    "[",
    "]",
    ":",
    ",",
    "\\",
    "\\u",
    "\\ud800",
    "1e400",
    "-",
    "01",
    "null",
    "\"id\":",
    "NaN",
    "\xff",
    "\xc3",
    "\xed\xa0\x80",
    "\r",
    "\t",
    "[[[[[",
    "99999999999999999999999999",
    "\x7f",
    "\xe2\x80\xa8",
};

} // namespace

std::size_t Mutations::below(std::size_t bound) {
    return random() % std::max<std::size_t>(bound, 1);
}

void Mutations::mutate(std::string& text) {
    const std::size_t at = below(text.size());
    switch (below(6)) {
    case 0:
        text.insert(at, fragments[below(std::size(fragments))]);
        break;
    case 1:
        text.insert(at, 1, static_cast<char>(below(256)));
        break;
    case 2:
        text.erase(at, 1 + below(8));
        break;
    case 3:
        text.resize(at);
        break;
    case 4:
        text.insert(below(text.size()), text.substr(at, below(40)));
        break;
    default:
        text.replace(at, 1, 1, static_cast<char>(below(256)));
    }
}

std::string Mutations::next() {
    std::string text;
    do {
        text = originals[below(std::size(originals))];
        for (std::size_t count = 1 + below(4); count > 0 && !text.empty(); --count)
            mutate(text);
        std::replace(text.begin(), text.end(), '\n', ' ');
    } while (text.find_first_not_of(" \t\r") == text.npos);
    return text;
}

} // namespace test
