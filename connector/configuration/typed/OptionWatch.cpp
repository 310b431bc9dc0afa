#include <connector/configuration/typed/OptionWatch.hpp>

#include <connector/configuration/typed/detail/Texts.hpp>

#include <stdexcept>

namespace connector::configuration {

OptionWatch::OptionWatch() noexcept = default;

OptionWatch::OptionWatch(std::shared_ptr<detail::Follower> newFollower) noexcept
    : follower(std::move(newFollower)) {
}

OptionWatch::OptionWatch(OptionWatch&& other) noexcept = default;

OptionWatch& OptionWatch::operator=(OptionWatch&& other) noexcept {
    if (this != &other) {
        const OptionWatch old(std::move(*this));
        follower = std::move(other.follower);
    }
    return *this;
}

OptionWatch::~OptionWatch() {
    if (follower)
        follower->end();
}

namespace detail {

void demandHandler(bool isThere) {
    if (!isThere)
        throw std::invalid_argument(texts::emptyHandler);
}

} // namespace detail

} // namespace connector::configuration
