/// Reads JSON texts part by part, without building anything.
#pragma once

#include <cstddef>
#include <string_view>
#include <variant>

namespace connector::service {

enum class JsonContainer { Object, Array };

/// A number as it is written, however large it is.
struct JsonNumber {
    std::string_view text;

    /// @return whether the number has neither a fraction nor an exponent
    bool isInteger() const { return text.find_first_of(".eE") == text.npos; }
};

/// Null, a boolean, a number, or the text of a string. Refers to data of the reader.
using JsonScalar = std::variant<std::monostate, bool, JsonNumber, std::string_view>;

/// Receives the parts of a text in their order. A position is that of the byte after a part.
class JsonHandler {
public:
    virtual ~JsonHandler() = default;

    virtual void begin(JsonContainer container) = 0;
    virtual void end(std::size_t position) = 0; ///< of the container that began last
    virtual void name(std::string_view text, std::size_t position) = 0; ///< of a member
    virtual void scalar(const JsonScalar& value, std::size_t position) = 0;
};

/// Does not recurse. Strict: one value, without comments, and no escapes of half a surrogate pair.
/// Numbers may be of any size, and containers may be nested to any depth. The handler may have
/// received parts of a text that then turns out not to be JSON.
/// @param text  in UTF-8
/// @throws std::invalid_argument "Text is not valid JSON: " + reason
/// @throws what the handler throws
void readJson(std::string_view text, JsonHandler& handler);

} // namespace connector::service
