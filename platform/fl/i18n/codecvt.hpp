/// UTF-8 and UTF-16, one into the other.
///
/// Conversion is strict and lossless: what is no well-formed text (overlong or truncated sequences,
/// surrogates in UTF-8, lone surrogates in UTF-16, values above U+10FFFF) throws std::runtime_error
/// that says so; everything else, U+0000 and U+FEFF included, survives a round trip. The forms are
/// those of RFC 3629 (UTF-8) and RFC 2781 (UTF-16).
///
/// Converters hold no state between calls: one may be used from several threads at once.
#pragma once

#include <connector/platform/Export.hpp>

#include <string>

namespace fl::i18n {

/// Turns 8-bit text of a named encoding into UTF-16. "UTF-8" is the one encoding there is.
class CONNECTOR_PLATFORM_EXPORT codecvt_string_to_ustring {
public:
    /// @param encoding     "UTF-8"; any other name throws std::invalid_argument
    ///                     "Unsupported text encoding: " followed by the name
    /// @param consume_all  whether the whole input must convert. This implementation never leaves
    ///                     input behind, so both values mean the same here.
    explicit codecvt_string_to_ustring(const std::string& encoding, bool consume_all = true);

    /// @return the text in UTF-16
    /// @throws std::runtime_error "Text is not valid UTF-8"
    std::u16string convert(const std::string& text) const;
};

/// Turns UTF-16 into 8-bit text of a named encoding. "UTF-8" is the one encoding there is.
class CONNECTOR_PLATFORM_EXPORT codecvt_ustring_to_string {
public:
    /// Arguments and failure as for codecvt_string_to_ustring.
    explicit codecvt_ustring_to_string(const std::string& encoding, bool consume_all = true);

    /// @return the text in UTF-8
    /// @throws std::runtime_error "Text is not valid UTF-16"
    std::string convert(const std::u16string& text) const;
};

/// @return `text` in UTF-16, as `converter` makes it
/// @throws what codecvt_string_to_ustring::convert throws
CONNECTOR_PLATFORM_EXPORT std::u16string to_ustring(const std::string& text,
                                                    const codecvt_string_to_ustring& converter);

/// @return `text` in the converter's 8-bit encoding
/// @throws what codecvt_ustring_to_string::convert throws
CONNECTOR_PLATFORM_EXPORT std::string to_string(const std::u16string& text,
                                                const codecvt_ustring_to_string& converter);

} // namespace fl::i18n
