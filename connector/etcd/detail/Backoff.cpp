#include <connector/etcd/detail/Backoff.hpp>

#include <algorithm>

namespace connector::etcd::detail {

namespace {

/// What the list takes after the connection, and the least bound however slow the rounds are.
constexpr std::chrono::milliseconds reserve{1'000};

} // namespace

Backoff::Milliseconds Backoff::next(Milliseconds round) {
    const Milliseconds most = std::max(longest - 2 * round - reserve, std::min(longest, reserve));
    const Milliseconds limit = std::min(bound, most);
    bound = std::min(2 * bound, longest);
    return Milliseconds(std::uniform_int_distribution<Milliseconds::rep>(0, limit.count())(random));
}

} // namespace connector::etcd::detail
