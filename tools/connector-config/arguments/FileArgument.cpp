#include "arguments/FileArgument.hpp"

#include "values/WrongArguments.hpp"

#include <connector/service/text/Number.hpp>

#include <map>

namespace connector_config {

using connector::service::readNumber;

namespace {

constexpr std::string_view longForm = "path=";

using Members = std::map<std::string, std::string, std::less<>>;

void addMember(Members& members, std::string_view member) {
    const std::size_t equalsSign = member.find('=');
    const std::string name(member.substr(0, equalsSign));
    const bool known = name == "path" || name == "name" || name == "group" || name == "order";
    if (!known || equalsSign == std::string_view::npos)
        throw WrongArguments("Unknown member of a file: " + std::string(member));
    if (!members.emplace(name, member.substr(equalsSign + 1)).second)
        throw WrongArguments("Repeated member of a file: " + std::string(member));
}

Members splitMembers(std::string_view text) {
    Members members;
    for (std::size_t comma = text.find(','); comma != std::string_view::npos;
         comma = text.find(',')) {
        addMember(members, text.substr(0, comma));
        text.remove_prefix(comma + 1);
    }
    addMember(members, text);
    return members;
}

std::int32_t readOrder(const std::string& text) {
    const auto order = readNumber<std::int32_t>(text);
    if (!order)
        throw WrongArguments("Order is no 32-bit integer: " + text);
    return *order;
}

} // namespace

FileArgument parseFileArgument(const std::string& text) {
    FileArgument file;
    if (text.compare(0, longForm.size(), longForm) != 0) {
        file.path = file.name = text;
        return file;
    }
    const Members members = splitMembers(text);
    file.path = file.name = members.at("path");
    if (const auto name = members.find("name"); name != members.end())
        file.name = name->second;
    if (const auto group = members.find("group"); group != members.end())
        file.group = group->second;
    if (const auto order = members.find("order"); order != members.end())
        file.order = readOrder(order->second);
    return file;
}

} // namespace connector_config
