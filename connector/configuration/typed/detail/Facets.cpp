#include <connector/configuration/typed/detail/Facets.hpp>

#include <connector/configuration/typed/detail/JsonText.hpp>

#include <algorithm>

namespace connector::configuration::detail {

void Facets::set(const std::string& name, const std::string& json) {
    const auto member = std::find_if(members.begin(), members.end(),
                                     [&name](const auto& entry) { return entry.first == name; });
    if (member != members.end())
        member->second = json;
    else
        members.emplace_back(name, json);
}

std::string Facets::json() const {
    std::string text = "{";
    for (const auto& [name, json] : members)
        text.append(text.size() == 1 ? "" : ",").append(jsonString(name) + ':' + json);
    return text + '}';
}

} // namespace connector::configuration::detail
