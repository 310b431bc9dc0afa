/// The text of a request, parsed as JSON.
///
/// Only the members that messages read are built, because the objects of a text can take hundreds
/// of times the memory of the text. Everything else is only checked. The last of several members
/// with the same name counts. A number that fits neither 64 bits nor a double becomes a string. It
/// then reads as any other string does: as its digits where a string is expected, and as text that
/// does not convert where a number is expected.
#pragma once

#include <Poco/JSON/Object.h>

#include <cstddef>
#include <optional>
#include <string>

namespace connector::service {

constexpr std::size_t maxRequestSize = 1024 * 1024; ///< in bytes
constexpr std::size_t maxNesting = 64;              ///< levels of objects and arrays

struct ParsedRequest {
    enum class Excess { None, Nesting, Elements };

    Poco::JSON::Object::Ptr object; ///< what messages read of it; null if there is an excess
    std::optional<std::string> id; ///< the JSON of the member "id", unchanged except for whitespace
    Excess excess = Excess::None;

    /// @throws std::invalid_argument "A request has at most 64 levels of nesting"
    /// @throws TooManyElements
    const Poco::JSON::Object::Ptr& content() const;
};

/// Does not recurse, whatever the nesting. The objects that it builds take at most
/// `maxElementMemory`.
/// @throws std::invalid_argument "A request is at most 1 MiB long", "Text is not valid UTF-8", "A
///         request is a JSON object" or "Text is not valid JSON: " + reason
ParsedRequest parseRequest(const std::string& text);

/// @return whether the text consists of JSON whitespace only
bool isBlank(const std::string& text);

} // namespace connector::service
