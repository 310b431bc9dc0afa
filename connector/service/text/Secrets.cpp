#include <connector/service/text/Secrets.hpp>

#include <algorithm>

namespace connector::service {

namespace {

/// ASCII only: a key is a row of bytes and has no language.
std::string inLowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return lower;
}

/// Tries again behind the last star only, so that no glob takes more than length times length.
bool matches(std::string_view glob, std::string_view text) {
    std::size_t inGlob = 0;
    std::size_t inText = 0;
    std::size_t behindStar = std::string_view::npos;
    std::size_t starred = 0; // where the text goes on behind what the star stands for
    while (inText < text.size()) {
        if (inGlob < glob.size() && glob[inGlob] == '*') {
            behindStar = ++inGlob;
            starred = inText;
        } else if (inGlob < glob.size() && (glob[inGlob] == '?' || glob[inGlob] == text[inText])) {
            ++inGlob;
            ++inText;
        } else if (behindStar != std::string_view::npos) {
            inGlob = behindStar;
            inText = ++starred;
        } else {
            return false;
        }
    }
    return glob.find_first_not_of('*', inGlob) == std::string_view::npos;
}

} // namespace

const char Secrets::mask[] = "******";

Secrets::Secrets(const std::vector<std::string>& moreGlobs)
    : globs{"*password*", "*secret*", "*token*"} {
    for (const std::string& glob : moreGlobs)
        globs.push_back(inLowerCase(glob));
}

bool Secrets::hides(std::string_view key) const {
    const std::string lower = inLowerCase(key);
    return std::any_of(globs.begin(), globs.end(),
                       [&lower](const std::string& glob) { return matches(glob, lower); });
}

OptionValue Secrets::shown(const std::string& key, const OptionValue& value) const {
    return hides(key) ? OptionValue(std::string(mask)) : value;
}

Option Secrets::shown(const Option& option) const {
    return {option.key, option.source, shown(option.key, option.value)};
}

} // namespace connector::service
