/// Parses the long forms of --file and --env.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace connector_config {

/// The members of a text of the form NAME=VALUE,NAME=VALUE,... They may come in any order, each at
/// most once. A value ends at the next comma.
class Members {
public:
    /// @param known  the names that a member may have
    /// @param what   describes the whole in failures
    /// @throws WrongArguments "Unknown member of WHAT: MEMBER", "Repeated member of WHAT: MEMBER"
    Members(std::string_view text, std::initializer_list<std::string_view> known, const char* what);

    /// @return the value, or nothing if there is no such member
    std::optional<std::string> find(std::string_view name) const;

    /// @return the number; `otherwise` if there is no member "order"
    /// @throws WrongArguments "Order is no 32-bit integer: TEXT"
    std::int32_t order(std::int32_t otherwise) const;

private:
    void add(std::string_view member, std::initializer_list<std::string_view> known,
             const char* what);

    std::map<std::string, std::string, std::less<>> values;
};

} // namespace connector_config
