/// The members of a JSON Schema for one option.
#pragma once

#include <connector/Export.hpp>

#include <string>
#include <utility>
#include <vector>

namespace connector::configuration::detail {

/// Names and JSON texts, in the order in which they were set. Each name appears once.
class CONNECTOR_EXPORT Facets {
public:
    Facets() = default;
    Facets(std::initializer_list<std::pair<std::string, std::string>> newMembers)
        : members(newMembers) {}

    /// Sets a member, or replaces it.
    void set(const std::string& name, const std::string& json);

    /// @return an object
    std::string json() const;

    const std::vector<std::pair<std::string, std::string>>& all() const { return members; }

private:
    std::vector<std::pair<std::string, std::string>> members;
};

} // namespace connector::configuration::detail
