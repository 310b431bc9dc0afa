/// UTF-16 text as the UTF-8 of JSON, and back.
#pragma once

#include <fl/i18n/codecvt.hpp>

#include <string>

namespace connector::configuration::detail {

/// @throws std::runtime_error "Text is not valid UTF-16"
inline std::string toUtf8(const std::u16string& text) {
    return fl::i18n::to_string(text, fl::i18n::codecvt_ustring_to_string("UTF-8", true));
}

/// @throws std::runtime_error "Text is not valid UTF-8"
inline std::u16string toUtf16(const std::string& text) {
    return fl::i18n::to_ustring(text, fl::i18n::codecvt_string_to_ustring("UTF-8", true));
}

} // namespace connector::configuration::detail
