#include <connector/service/text/Secrets.hpp>

#include <algorithm>

namespace connector::service {

namespace {

/// ASCII only: a key is a sequence of bytes without a language.
char toLowerCase(char byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
}

} // namespace

const char Secrets::mask[] = "******";

Secrets::Secrets(const std::vector<std::string>& moreGlobs)
    : globs{"*password*", "*secret*", "*token*"} {
    globs.insert(globs.end(), moreGlobs.begin(), moreGlobs.end());
    for (std::string& glob : globs)
        std::transform(glob.begin(), glob.end(), glob.begin(), toLowerCase);
}

bool Secrets::isSecret(std::string_view key) const {
    KeyMatcher matcher(*this);
    matcher.append(key);
    return matcher.isSecret();
}

OptionValue Secrets::masked(const std::string& key, const OptionValue& value) const {
    return isSecret(key) ? OptionValue(std::string(mask)) : value;
}

Option Secrets::masked(const Option& option) const {
    return {option.key, option.source, masked(option.key, option.value)};
}

Secrets::KeyMatcher::KeyMatcher(const Secrets& secrets)
    : matchers(secrets.globs.begin(), secrets.globs.end()) {
}

void Secrets::KeyMatcher::append(std::string_view piece) {
    for (GlobMatcher& matcher : matchers) {
        for (const char byte : piece)
            matcher.append(toLowerCase(byte));
    }
}

bool Secrets::KeyMatcher::isSecret() const {
    return std::any_of(matchers.begin(), matchers.end(),
                       [](const GlobMatcher& matcher) { return matcher.matches(); });
}

} // namespace connector::service
