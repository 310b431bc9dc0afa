#include <connector/service/text/GlobMatcher.hpp>

namespace connector::service {

GlobMatcher::GlobMatcher(std::string_view newGlob) : glob(newGlob), matched(newGlob.size() + 1) {
    matched[0] = true;
    matchStarsWithNothing();
}

void GlobMatcher::append(char byte) {
    for (std::size_t i = glob.size(); i > 0;
         --i) { // backwards, because [i] depends on the old [i - 1]
        const char pattern = glob[i - 1];
        const bool fits = pattern == '?' || pattern == byte;
        matched[i] = pattern == '*' ? matched[i] : fits && matched[i - 1];
    }
    matched[0] = false;
    matchStarsWithNothing();
}

void GlobMatcher::matchStarsWithNothing() {
    for (std::size_t i = 0; i < glob.size(); ++i) {
        if (glob[i] == '*' && matched[i])
            matched[i + 1] = true;
    }
}

} // namespace connector::service
