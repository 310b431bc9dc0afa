#include <fl/i18n/codecvt.hpp>

#include <boost/locale/encoding_utf.hpp>

#include <stdexcept>

namespace fl::i18n {

namespace {

void requireUtf8(const std::string& encoding) {
    if (encoding != "UTF-8")
        throw std::invalid_argument("Unsupported text encoding: " + encoding);
}

// Boost.Locale's text says only that the conversion failed. Ours says what is wrong with the input.
template <typename To, typename From>
std::basic_string<To> convertStrictly(const std::basic_string<From>& text, const char* failure) {
    try {
        return boost::locale::conv::utf_to_utf<To>(text, boost::locale::conv::stop);
    } catch (const boost::locale::conv::conversion_error&) {
        throw std::runtime_error(failure);
    }
}

} // namespace

codecvt_string_to_ustring::codecvt_string_to_ustring(const std::string& encoding, bool) {
    requireUtf8(encoding);
}

std::u16string codecvt_string_to_ustring::convert(const std::string& text) const {
    return convertStrictly<char16_t>(text, "Text is not valid UTF-8");
}

codecvt_ustring_to_string::codecvt_ustring_to_string(const std::string& encoding, bool) {
    requireUtf8(encoding);
}

std::string codecvt_ustring_to_string::convert(const std::u16string& text) const {
    return convertStrictly<char>(text, "Text is not valid UTF-16");
}

std::u16string to_ustring(const std::string& text, const codecvt_string_to_ustring& converter) {
    return converter.convert(text);
}

std::string to_string(const std::u16string& text, const codecvt_ustring_to_string& converter) {
    return converter.convert(text);
}

} // namespace fl::i18n
