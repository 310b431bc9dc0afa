/// The text of a request, parsed as JSON.
///
/// Poco::JSON::Parser is strict, except that the last of several members with the same name counts.
/// It needs help in two ways. It recurses, so the nesting is limited. And it rejects the whole text
/// if a number fits none of its types, so such numbers are passed to it as strings. They then read
/// as any other string does: as their digits where a string is expected, and as text that does not
/// convert where a number is expected.
#pragma once

#include <Poco/JSON/Object.h>

#include <cstddef>
#include <optional>
#include <string>

namespace connector::service {

constexpr std::size_t maxRequestSize = 1024 * 1024; ///< in bytes
constexpr std::size_t maxNesting = 64;              ///< levels of objects and arrays

struct ParsedRequest {
    Poco::JSON::Object::Ptr object; ///< null if the text is valid JSON but nested too deeply
    std::optional<std::string> id; ///< the JSON of the member "id", unchanged except for whitespace

    /// @throws std::invalid_argument "A request has at most 64 levels of nesting"
    const Poco::JSON::Object::Ptr& content() const;
};

/// @throws std::invalid_argument and nothing else: the text is too long, or not a JSON object in
///         UTF-8
ParsedRequest parseRequest(const std::string& text);

/// @return whether the text consists of JSON whitespace only
bool isBlank(const std::string& text);

} // namespace connector::service
