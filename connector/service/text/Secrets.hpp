/// Which options are secret, and what is shown in place of their values.
#pragma once

#include <connector/configuration/Option.hpp>
#include <connector/service/text/GlobMatcher.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace connector::service {

using connector::configuration::Option;
using connector::configuration::OptionValue;

/// A secret value is shown as the string "******" whatever its type, because even the length of a
/// list gives something away. Immutable; may be used from any thread.
class Secrets {
public:
    /// Keys that match *password*, *secret* or *token* are always secret.
    /// @param moreGlobs  see GlobMatcher; like all others, without regard to the case of ASCII
    ///                   letters
    explicit Secrets(const std::vector<std::string>& moreGlobs = {});

    bool isSecret(std::string_view key) const;

    /// @return the value, or the mask if the key is secret
    OptionValue masked(const std::string& key, const OptionValue& value) const;
    Option masked(const Option& option) const;

    static const char mask[];

    class KeyMatcher;

private:
    std::vector<std::string> globs; // in lower case
};

/// Decides whether a key is secret while the key arrives piece by piece. All pieces together take
/// time proportional to their length, so checking every prefix of a long text is cheap.
class Secrets::KeyMatcher {
public:
    /// @param secrets  must outlive this object
    explicit KeyMatcher(const Secrets& secrets);

    void append(std::string_view piece);

    /// @return whether the key that consists of all pieces so far is secret
    bool isSecret() const;

private:
    std::vector<GlobMatcher> matchers;
};

} // namespace connector::service
