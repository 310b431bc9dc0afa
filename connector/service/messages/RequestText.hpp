/// From the text of a request to its JSON.
///
/// Poco::JSON::Parser is strict about everything but duplicate members, of which the last one counts.
/// Two things are done around it: the nesting is limited, for the parser recurses; and numbers that
/// fit none of its types, which it refuses with the whole text, are handed to it as strings, which
/// read the same: as their digits where a text is wanted, and as what does not convert where a number
/// is.
#pragma once

#include <Poco/JSON/Object.h>

#include <cstddef>
#include <optional>
#include <string>

namespace connector::service {

/// In bytes; what is longer is no request.
constexpr std::size_t longestRequest = 1024 * 1024;

/// Of objects and arrays in one another.
constexpr std::size_t deepestNesting = 64;

struct RequestText {
    Poco::JSON::Object::Ptr object; ///< null if it is JSON, but nested too deeply to be read
    std::optional<std::string> id;  ///< the JSON of the member "id" as it came, without blanks

    /// @throws std::invalid_argument "A request has at most 64 levels of nesting"
    const Poco::JSON::Object::Ptr& content() const;
};

/// @throws std::invalid_argument that says why the text is no JSON object, or is too long; nothing else
RequestText readRequest(const std::string& text);

/// @return whether there is nothing but what JSON takes for blank
bool isBlank(const std::string& text);

} // namespace connector::service
