/// Conversion between UTF-8 and UTF-16.
///
/// Conversion is strict and lossless. Text that is not well-formed (overlong or truncated
/// sequences, surrogates in UTF-8, lone surrogates in UTF-16, values above U+10FFFF) throws
/// std::runtime_error. All other text, including U+0000 and U+FEFF, is the same after a round trip.
/// RFC 3629 defines UTF-8, RFC 2781 UTF-16.
///
/// Converters have no state, so several threads may use one at the same time.
#pragma once

#include <connector/platform/Export.hpp>

#include <string>

namespace fl::i18n {

/// Converts 8-bit text of a named encoding to UTF-16. The only encoding is "UTF-8".
class CONNECTOR_PLATFORM_EXPORT codecvt_string_to_ustring {
public:
    /// @param encoding     "UTF-8"; any other name throws std::invalid_argument
    ///                     "Unsupported text encoding: " followed by the name
    /// @param consume_all  whether the whole input must be converted. This implementation always
    ///                     converts the whole input or throws, so the value has no effect.
    explicit codecvt_string_to_ustring(const std::string& encoding, bool consume_all = true);

    /// @return the text in UTF-16
    /// @throws std::runtime_error "Text is not valid UTF-8"
    std::u16string convert(const std::string& text) const;
};

/// Converts UTF-16 to 8-bit text of a named encoding. The only encoding is "UTF-8".
class CONNECTOR_PLATFORM_EXPORT codecvt_ustring_to_string {
public:
    /// The parameters and the exception are those of codecvt_string_to_ustring.
    explicit codecvt_ustring_to_string(const std::string& encoding, bool consume_all = true);

    /// @return the text in UTF-8
    /// @throws std::runtime_error "Text is not valid UTF-16"
    std::string convert(const std::u16string& text) const;
};

/// @return `text` in UTF-16, converted by `converter`
/// @throws what converter.convert throws
CONNECTOR_PLATFORM_EXPORT std::u16string to_ustring(const std::string& text,
                                                    const codecvt_string_to_ustring& converter);

/// @return `text` in the converter's 8-bit encoding
/// @throws what converter.convert throws
CONNECTOR_PLATFORM_EXPORT std::string to_string(const std::u16string& text,
                                                const codecvt_ustring_to_string& converter);

} // namespace fl::i18n
