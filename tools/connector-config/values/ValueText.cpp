#include "values/ValueText.hpp"

#include <connector/service/text/Escaping.hpp>
#include <connector/service/text/Json.hpp>

#include <connector/configuration/json/OptionValueJson.hpp>

#include <fl/i18n/codecvt.hpp>

namespace connector_config {

std::string plainText(const OptionValue& value) {
    if (const auto* const text = boost::get<std::string>(&value))
        return *text;
    if (const auto* const text = boost::get<std::u16string>(&value))
        return fl::i18n::to_string(*text, fl::i18n::codecvt_ustring_to_string("UTF-8", true));
    return connector::service::jsonText(
        connector::configuration::fromOptionValue(value)->get("value"));
}

std::string displayText(const OptionValue& value) {
    return connector::service::escaped(plainText(value));
}

} // namespace connector_config
