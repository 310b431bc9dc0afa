#include <connector/configuration/typed/InvalidOption.hpp>

#include <connector/configuration/typed/detail/Secrets.hpp>
#include <connector/configuration/typed/detail/Texts.hpp>

namespace connector::configuration {

namespace {

std::string describe(const Option& option, const std::string& expected) {
    return detail::texts::option + option.key + detail::texts::fromSource + option.source + ' ' +
           detail::texts::notConvertible(expected, detail::shownValue(option.key, option.value));
}

} // namespace

InvalidOption::InvalidOption(const Option& option, const std::string& expected)
    : std::runtime_error(describe(option, expected)),
      details(std::make_shared<const Details>(Details{option.key, option.source, expected})) {
}

InvalidOption::~InvalidOption() = default;

} // namespace connector::configuration
