/// What `lint` reports, and the rules that it knows.
#pragma once

#include <connector/Export.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace connector::configuration::properties {

/// The rules up to `Difference` tell of a text that the library and java.util.Properties read
/// differently. The others tell of a text that both read alike.
enum class Rule : std::uint8_t {
    NoSeparator,
    EmptyKey,
    SecondSeparator,
    Escape,
    TrailingBlank,
    LeadingBlank,
    Continuation,
    Comment,
    LostAtEnd,
    UnicodeEscape,
    ByteOrderMark,
    Difference, ///< none of the rules above
    DuplicateKey,
    NotUtf8,
    Suspicious,
};

/// A place in a file, and what is wrong there.
struct Finding {
    std::size_t line;   ///< from 1; a line ends with LF, CR LF or CR
    std::size_t column; ///< in bytes, from 1
    Rule rule;
    std::string text; ///< one line without control characters; UTF-8
};

/// A rule as people write it.
struct RuleDescription {
    Rule rule;
    std::string_view name; ///< "no-separator", ...
    std::string_view text; ///< when it is broken; one sentence
};

/// May be called from any thread; so may the others below.
/// @return all rules, in the order of the enumeration
CONNECTOR_EXPORT const std::vector<RuleDescription>& rules();

/// @return "no-separator", ...
CONNECTOR_EXPORT std::string_view nameOf(Rule rule);

/// @return the rule with exactly this name, or nothing if there is none
CONNECTOR_EXPORT std::optional<Rule> ruleNamed(std::string_view name);

/// @return whether the rule tells of a difference between the library and java.util.Properties
constexpr bool isDifference(Rule rule) {
    return rule <= Rule::Difference;
}

} // namespace connector::configuration::properties
