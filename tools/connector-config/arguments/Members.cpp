#include "arguments/Members.hpp"

#include "values/WrongArguments.hpp"

#include <connector/service/text/Number.hpp>

#include <algorithm>

namespace connector_config {

using connector::service::readNumber;

Members::Members(std::string_view text, std::initializer_list<std::string_view> known,
                 const char* what, std::string_view newRepeatable)
    : repeatable(newRepeatable) {
    for (std::size_t comma = text.find(','); comma != std::string_view::npos;
         comma = text.find(',')) {
        add(text.substr(0, comma), known, what);
        text.remove_prefix(comma + 1);
    }
    add(text, known, what);
}

void Members::add(std::string_view member, std::initializer_list<std::string_view> known,
                  const char* what) {
    const std::size_t equalsSign = member.find('=');
    const std::string_view name = member.substr(0, equalsSign);
    const bool isKnown = std::find(known.begin(), known.end(), name) != known.end();
    if (!isKnown || equalsSign == std::string_view::npos)
        throw WrongArguments("Unknown member of " + std::string(what) + ": " + std::string(member));
    std::vector<std::string>& present = values[std::string(name)];
    if (!present.empty() && name != repeatable)
        throw WrongArguments("Repeated member of " + std::string(what) + ": " +
                             std::string(member));
    present.emplace_back(member.substr(equalsSign + 1));
}

std::optional<std::string> Members::find(std::string_view name) const {
    const auto value = values.find(name);
    return value == values.end() ? std::nullopt : std::optional<std::string>(value->second.front());
}

std::vector<std::string> Members::all(std::string_view name) const {
    const auto value = values.find(name);
    return value == values.end() ? std::vector<std::string>() : value->second;
}

std::int32_t Members::order(std::int32_t otherwise) const {
    const std::optional<std::string> text = find("order");
    if (!text)
        return otherwise;
    const auto order = readNumber<std::int32_t>(*text);
    if (!order)
        throw WrongArguments("Order is not a 32-bit integer: " + *text);
    return *order;
}

} // namespace connector_config
