#include "values/ValueType.hpp"

#include <connector/configuration/json/OptionValueJson.hpp>

#include <boost/mpl/for_each.hpp>
#include <boost/mpl/size.hpp>

#include <algorithm>
#include <vector>

namespace connector_config {

namespace {

static_assert(static_cast<int>(ValueType::UstringArray) + 1 ==
                  boost::mpl::size<OptionValue::types>::value,
              "ValueType lists every alternative of OptionValue");

/// @return the names of all types, taken from the library's JSON form of a value of each type
std::vector<std::string> makeTypeNames() {
    std::vector<std::string> names;
    boost::mpl::for_each<OptionValue::types>([&names](const auto& value) {
        names.push_back(
            connector::configuration::fromOptionValue(value)->template getValue<std::string>(
                "type"));
    });
    return names;
}

const std::vector<std::string>& typeNames() {
    static const std::vector<std::string> names = makeTypeNames();
    return names;
}

} // namespace

const std::string& typeName(ValueType type) {
    return typeNames()[static_cast<std::size_t>(type)];
}

std::optional<ValueType> typeFromName(const std::string& name) {
    const std::vector<std::string>& names = typeNames();
    const auto found = std::find(names.begin(), names.end(), name);
    if (found == names.end())
        return std::nullopt;
    return static_cast<ValueType>(found - names.begin());
}

ValueType typeOf(const OptionValue& value) {
    return static_cast<ValueType>(value.which());
}

} // namespace connector_config
