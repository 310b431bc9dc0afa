#include <connector/service/text/LoadingGroup.hpp>

#include <utility>

namespace connector::service {

namespace {

std::string& currentPrefix() {
    thread_local std::string prefix;
    return prefix;
}

std::string prefixOf(const std::string& group) {
    const bool needsDot = !group.empty() && group.back() != '.';
    return needsDot ? group + '.' : group;
}

} // namespace

LoadingGroup::LoadingGroup(const std::string& group)
    : previousPrefix(std::exchange(currentPrefix(), prefixOf(group))) {
}

LoadingGroup::~LoadingGroup() {
    currentPrefix() = std::move(previousPrefix);
}

const std::string& LoadingGroup::prefix() {
    return currentPrefix();
}

} // namespace connector::service
