#include <connector/service/messages/ObjectBuilder.hpp>

#include <connector/service/text/Number.hpp>

#include <Poco/NumberParser.h>

#include <algorithm>
#include <cstdint>
#include <utility>

namespace connector::service {

using Poco::Dynamic::Var;
using Poco::JSON::Array;
using Poco::JSON::Object;

namespace {

// What the allocator hands out for POCO's classes, in bytes. RequestMemoryTest measures whether
// these are enough.
constexpr std::size_t objectCost = 880; // most of it is the first block of a deque
constexpr std::size_t arrayCost = 144;
constexpr std::size_t memberCost = 80;  // in addition to its value
constexpr std::size_t elementCost = 16; // a place in `elements` and one in the array
constexpr std::size_t scalarCost = 48;  // of a string; others take less, but a message turns any of
                                        // them into a string if that is the type of its value
constexpr std::size_t textCost = 32; // in addition to the length, if it does not fit into a string

/// @return a number if POCO has a type for it, otherwise its text
Var numberValue(const JsonNumber& number) {
    if (number.isInteger()) {
        if (const auto value = readNumber<std::int64_t>(number.text))
            return *value;
        if (const auto value = readNumber<std::uint64_t>(number.text))
            return *value;
    } else if (double value = 0;
               Poco::NumberParser::tryParseFloat(std::string(number.text), value)) {
        return value;
    }
    return std::string(number.text);
}

Var scalarValue(const JsonScalar& scalar) {
    if (const auto* const flag = std::get_if<bool>(&scalar))
        return *flag;
    if (const auto* const number = std::get_if<JsonNumber>(&scalar))
        return numberValue(*number);
    if (const auto* const text = std::get_if<std::string_view>(&scalar))
        return std::string(*text);
    return {};
}

} // namespace

void ObjectBuilder::begin(JsonContainer container) {
    const bool isObject = container == JsonContainer::Object;
    charge(isObject ? objectCost : arrayCost);
    open.push_back({isObject ? new Object : nullptr, {}, elements.size()});
}

void ObjectBuilder::end() {
    const Open closed = std::move(open.back());
    open.pop_back();
    add(closed.object.isNull() ? Var(takeArray(closed.start)) : Var(closed.object));
}

void ObjectBuilder::name(std::string_view text) {
    charge(memberCost);
    chargeText(text.size());
    open.back().name = text;
}

void ObjectBuilder::scalar(const JsonScalar& scalar) {
    const Var value = scalarValue(scalar);
    charge(scalarCost);
    if (value.isString())
        chargeText(value.extract<std::string>().size());
    add(value);
}

Var ObjectBuilder::result() const {
    return elements.empty() ? Var() : elements.front();
}

/// The longest text counts three times, because POCO copies what it is given.
void ObjectBuilder::charge(std::size_t bytes) {
    held += bytes;
    if (held + 2 * longest > limit)
        throw TooManyElements();
}

void ObjectBuilder::chargeText(std::size_t length) {
    longest = std::max(longest, length);
    charge(length <= std::string().capacity() ? 0 : length + textCost);
}

void ObjectBuilder::add(const Var& value) {
    if (!open.empty() && !open.back().object.isNull()) {
        open.back().object->set(open.back().name, value);
        return;
    }
    charge(elementCost);
    elements.push_back(value);
}

Array::Ptr ObjectBuilder::takeArray(std::size_t start) {
    Array::Ptr array = new Array;
    while (elements.size() > start) {
        array->set(static_cast<unsigned>(elements.size() - start - 1), elements.back());
        elements.pop_back();
    }
    return array;
}

} // namespace connector::service
