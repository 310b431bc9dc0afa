#include <connector/service/messages/OptionBodyHandler.hpp>

#include <connector/service/messages/OptionBody.hpp>
#include <connector/service/messages/TooManyElements.hpp>

#include <utility>

namespace connector::service {

namespace {

constexpr std::size_t scalarCost = 64;  // in the payload and in a vector
constexpr std::size_t stringCost = 128; // the same, without the text
constexpr std::size_t copiesOfText = 3; // in the payload, and as UTF-16

} // namespace

void OptionBodyHandler::begin(JsonContainer container) {
    ++depth;
    const bool isArray = container == JsonContainer::Array;
    const bool isValue = depth == 1 || (depth == 2 && isObject && member == Member::Value);
    if (isArray && isValue)
        collected.isArray = true;
    else if (depth == 1)
        isObject = true;
    else if (depth == 2 && isObject && member == Member::Type)
        refuse("Type is not a string");
    else
        refuse("A value is a boolean, a number, a string or an array of one of these");
}

void OptionBodyHandler::end(std::size_t) {
    --depth;
}

void OptionBodyHandler::name(std::string_view text, std::size_t) {
    if (depth != 1)
        return; // of an object that has been refused
    member = text == "type" ? Member::Type : text == "value" ? Member::Value : Member::None;
    if (member == Member::None)
        refuse("Members other than type and value are not allowed");
    else if (std::exchange(member == Member::Type ? hasType : hasValue, true))
        refuse("A member is given twice");
}

void OptionBodyHandler::scalar(const JsonScalar& value, std::size_t) {
    if (reason != nullptr)
        return;
    if (isObject && depth == 1 && member == Member::Type)
        readType(value);
    else
        addScalar(value);
}

const OptionPayload& OptionBodyHandler::payload() const {
    if (reason != nullptr)
        throw UnacceptableValue(reason);
    if (isObject && !hasType)
        throw UnacceptableValue("Member is missing: type");
    if (isObject && !hasValue)
        throw UnacceptableValue("Member is missing: value");
    return collected;
}

void OptionBodyHandler::refuse(const char* newReason) {
    if (reason == nullptr)
        reason = newReason;
}

void OptionBodyHandler::readType(const JsonScalar& value) {
    const auto* const text = std::get_if<std::string_view>(&value);
    if (text == nullptr)
        return refuse("Type is not a string");
    charge(copiesOfText * text->size());
    typeName = *text;
}

void OptionBodyHandler::addScalar(const JsonScalar& value) {
    if (const auto* const text = std::get_if<std::string_view>(&value)) {
        charge(stringCost + copiesOfText * text->size());
        collected.scalars.emplace_back(std::string(*text));
        return;
    }
    charge(scalarCost);
    if (const auto* const number = std::get_if<JsonNumber>(&value))
        collected.scalars.emplace_back(*number);
    else if (const auto* const flag = std::get_if<bool>(&value))
        collected.scalars.emplace_back(*flag);
    else
        refuse("null is not a value");
}

void OptionBodyHandler::charge(std::size_t bytes) {
    held += bytes;
    if (held > maxElementMemory)
        throw TooManyElements();
}

} // namespace connector::service
