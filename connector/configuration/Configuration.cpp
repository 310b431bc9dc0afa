/// The key functions of the interfaces, and the templates that are instantiated for the core's
/// types.
#include <connector/configuration/Configuration.hpp>
#include <connector/configuration/sources/ConfigurationSource.hpp>

#include <connector/configuration/detail/Errors.hpp>

#include <stdexcept>

namespace connector {

namespace configuration {

namespace {

template <typename Character>
std::basic_string<Character> textAt(const Character* text) {
    if (text == nullptr)
        throw std::invalid_argument(detail::errors::nullText);
    return text;
}

} // namespace

Configuration::~Configuration() = default;
ConfigurationSource::~ConfigurationSource() = default;

std::string Configuration::stored(const char* text) {
    return textAt(text);
}

std::u16string Configuration::stored(const char16_t* text) {
    return textAt(text);
}

} // namespace configuration

template class detail::SharedFutureState<configuration::OptionValue>;
template class Future<configuration::OptionValue>;
template class detail::SharedFutureState<configuration::Option>;
template class Future<configuration::Option>;
template class reactive_streams::CachedValuePublisher<configuration::OptionValue,
                                                      std::function<void()>>;

} // namespace connector
