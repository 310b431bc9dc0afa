#include <connector/configuration/typed/detail/Secrets.hpp>

#include <connector/configuration/typed/detail/JsonText.hpp>
#include <connector/configuration/typed/detail/Scalars.hpp>
#include <connector/configuration/typed/detail/Texts.hpp>

namespace connector::configuration::detail {

bool looksSecret(std::string_view key) {
    for (const std::string_view word : {"password", "secret", "token"}) {
        for (std::size_t at = 0; at + word.size() <= key.size(); ++at) {
            if (equalIgnoringCase(key.substr(at, word.size()), word))
                return true;
        }
    }
    return false;
}

std::string shownValue(std::string_view key, const OptionValue& value) {
    return looksSecret(key) ? std::string(texts::hidden) : jsonPayload(value);
}

} // namespace connector::configuration::detail
