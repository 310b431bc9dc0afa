#include "values/ValueText.hpp"

#include <connector/service/text/Escaping.hpp>
#include <connector/service/text/Json.hpp>

#include <fl/i18n/codecvt.hpp>

namespace connector_config {

using connector::service::escaped;
using connector::service::toJson;
using connector::service::toText;

std::string plainText(const OptionValue& value) {
    if (const auto* const text = boost::get<std::string>(&value))
        return *text;
    if (const auto* const text = boost::get<std::u16string>(&value))
        return fl::i18n::to_string(*text, fl::i18n::codecvt_ustring_to_string("UTF-8", true));
    return toText(toJson(value)->get("value"));
}

std::string shownText(const OptionValue& value) {
    return escaped(plainText(value));
}

} // namespace connector_config
