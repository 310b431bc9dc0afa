/// Which values are nobody's business.
#pragma once

#include <connector/configuration/Option.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace connector::service {

using connector::configuration::Option;
using connector::configuration::OptionValue;

/// What is shown in place of a secret: the text "******", whatever the type of the value, since even
/// the length of a list tells something.
class Secrets {
public:
    /// Keys that look like *password*, *secret* or *token* are secret in any case.
    /// @param moreGlobs  in which "*" stands for any text and "?" for any byte; the case of ASCII
    ///                   letters does not matter
    explicit Secrets(const std::vector<std::string>& moreGlobs = {});

    bool hides(std::string_view key) const;

    OptionValue shown(const std::string& key, const OptionValue& value) const;
    Option shown(const Option& option) const;

    static const char mask[];

private:
    std::vector<std::string> globs; // in lower case
};

} // namespace connector::service
