#include <connector/service/http/SharedTexts.hpp>

#include <functional>
#include <iterator>
#include <utility>

namespace connector::service {

SharedTexts::Text SharedTexts::shared(Text text) {
    if (text->size() < minSize)
        return text;
    const std::size_t hash = std::hash<std::string>()(*text);
    const std::lock_guard<std::mutex> lock(mutex);
    const auto [begin, end] = texts.equal_range(hash);
    for (auto known = begin; known != end; ++known) {
        if (Text other = known->second.lock(); other != nullptr && *other == *text)
            return other;
    }
    forgetUnused();
    texts.emplace(hash, text);
    return text;
}

/// Looks through all texts only when there are twice as many as were in use the last time, so that
/// each addition costs little on average.
void SharedTexts::forgetUnused() {
    if (texts.size() < sizeToForget)
        return;
    for (auto text = texts.begin(); text != texts.end();)
        text = text->second.expired() ? texts.erase(text) : std::next(text);
    sizeToForget = 2 * texts.size() + 16;
}

std::size_t SharedTexts::size() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return texts.size();
}

} // namespace connector::service
