#include <connector/configuration/typed/BadOptionCast.hpp>

#include <connector/configuration/typed/detail/JsonText.hpp>
#include <connector/configuration/typed/detail/Texts.hpp>

namespace connector::configuration {

BadOptionCast::BadOptionCast(const std::string& typeName, const OptionValue& value)
    : std::runtime_error(detail::texts::optionValue +
                         detail::texts::notConvertible(typeName, detail::jsonPayload(value))) {
}

BadOptionCast::~BadOptionCast() = default;

} // namespace connector::configuration
