/// Parses the long forms of --file and --env, and the argument of --etcd.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace connector_config {

/// The members of a text of the form NAME=VALUE,NAME=VALUE,... They may come in any order, each at
/// most once unless it is repeatable. A value ends at the next comma.
class Members {
public:
    /// @param known  the names that a member may have
    /// @param what   describes the whole in failures
    /// @param newRepeatable  the name that may come more than once; empty: none
    /// @throws WrongArguments "Unknown member of WHAT: MEMBER", "Repeated member of WHAT: MEMBER"
    Members(std::string_view text, std::initializer_list<std::string_view> known, const char* what,
            std::string_view newRepeatable = {});

    /// @return the first value, or nothing if there is no such member
    std::optional<std::string> find(std::string_view name) const;

    /// @return all values, in the order given
    std::vector<std::string> all(std::string_view name) const;

    /// @return the number; `otherwise` if there is no member "order"
    /// @throws WrongArguments "Order is not a 32-bit integer: TEXT"
    std::int32_t order(std::int32_t otherwise) const;

private:
    void add(std::string_view member, std::initializer_list<std::string_view> known,
             const char* what);

    const std::string_view repeatable;
    std::map<std::string, std::vector<std::string>, std::less<>> values; // each has at least one
};

} // namespace connector_config
