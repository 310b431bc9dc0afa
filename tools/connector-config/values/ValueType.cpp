#include "values/ValueType.hpp"

#include <boost/mpl/size.hpp>

#include <algorithm>
#include <iterator>

namespace connector_config {

namespace {

constexpr const char* names[] = {
    "bool",      "int",      "uint",      "double",      "ustring",     "string",
    "boolArray", "intArray", "uintArray", "doubleArray", "stringArray", "ustringArray",
};
static_assert(std::size(names) == boost::mpl::size<OptionValue::types>::value,
              "every alternative has a name");

} // namespace

const char* nameOf(ValueType type) {
    return names[static_cast<std::size_t>(type)];
}

std::optional<ValueType> typeNamed(std::string_view name) {
    const auto* const found = std::find(std::begin(names), std::end(names), name);
    if (found == std::end(names))
        return std::nullopt;
    return static_cast<ValueType>(found - std::begin(names));
}

ValueType typeOf(const OptionValue& value) {
    return static_cast<ValueType>(value.which());
}

} // namespace connector_config
