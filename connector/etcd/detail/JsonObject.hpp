/// The JSON object of an option value, before its payload is converted.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace connector::etcd::detail {

/// A number with fraction or exponent, or one beyond 64 bits.
struct JsonNumber {
    double value;
    std::string text;
};

/// A scalar of JSON; null is the first alternative.
using JsonScalar =
    std::variant<std::monostate, bool, std::int64_t, std::uint64_t, JsonNumber, std::string>;

/// What an option value needs to know of a JSON text.
struct JsonObject {
    bool isObject = false;           ///< whether the top is an object
    std::size_t types = 0;           ///< members "type" of it
    std::size_t values = 0;          ///< members "value"
    std::size_t others = 0;          ///< members of other names
    bool isTypeText = false;         ///< whether the type is a string
    std::string type;                ///< the text of the type
    bool isArray = false;            ///< whether the payload is an array
    bool isNested = false;           ///< whether the payload is an object, or has containers in it
    std::vector<JsonScalar> payload; ///< one scalar, or the elements of the array
    bool isBeyondRange = false; ///< a number was beyond the range of double; the rest is not read
};

/// @return nothing if the text is not JSON
std::optional<JsonObject> readJsonObject(std::string_view text);

} // namespace connector::etcd::detail
