#include "arguments/EnvironmentArgument.hpp"

#include "arguments/Members.hpp"

namespace connector_config {

EnvironmentArgument parseEnvironmentArgument(const std::string& text) {
    constexpr std::string_view longForm = "prefix=";
    EnvironmentArgument environment;
    if (text.compare(0, longForm.size(), longForm) != 0) {
        environment.prefix = text;
        return environment;
    }
    const Members members(text, {"prefix", "name", "group", "order"}, "--env");
    environment.prefix = *members.find("prefix");
    environment.name = members.find("name").value_or(environment.name);
    environment.group = members.find("group").value_or("");
    environment.order = members.order(environment.order);
    return environment;
}

} // namespace connector_config
