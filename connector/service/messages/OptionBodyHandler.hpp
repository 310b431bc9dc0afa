/// Collects the parts of the body of a request to set an option.
#pragma once

#include <connector/service/text/JsonReader.hpp>

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace connector::service {

/// The value of a body, before it gets a type.
struct OptionPayload {
    using Scalar = std::variant<bool, JsonNumber, std::string>;

    std::deque<Scalar> scalars; ///< the elements of an array, or one scalar
    bool isArray = false;
};

/// Takes a body apart. If it is not acceptable, keeps the first reason and ignores the rest.
class OptionBodyHandler : public JsonHandler {
public:
    void begin(JsonContainer container) override;
    void end(std::size_t position) override;
    void name(std::string_view text, std::size_t position) override;
    void scalar(const JsonScalar& value, std::size_t position) override;

    /// @throws UnacceptableValue
    const OptionPayload& payload() const;

    /// @return the member "type"; nothing if the body is a bare value
    const std::optional<std::string>& type() const { return typeName; }

private:
    enum class Member { None, Type, Value };

    void refuse(const char* newReason);
    void readType(const JsonScalar& value);
    void addScalar(const JsonScalar& value);
    void charge(std::size_t bytes);

    OptionPayload collected;
    std::optional<std::string> typeName;
    const char* reason = nullptr; // null as long as the body is acceptable
    Member member = Member::None;
    bool isObject = false;
    bool hasType = false;
    bool hasValue = false;
    std::size_t depth = 0;
    std::size_t held = 0; // bytes, also those of the value that is made of the payload
};

} // namespace connector::service
