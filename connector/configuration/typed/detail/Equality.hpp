/// Comparing values whose type may have no ==.
#pragma once

#include <type_traits>
#include <utility>
#include <vector>

namespace connector::configuration::detail {

template <typename T, typename = void>
struct HasOperator : std::false_type {};
template <typename T>
struct HasOperator<T, std::enable_if_t<std::is_convertible_v<
                          decltype(std::declval<const T&>() == std::declval<const T&>()), bool>>>
    : std::true_type {};

/// The == of a list is declared for any type of elements, so the element type is tested.
template <typename T>
struct HasEquality : HasOperator<T> {};
template <typename T>
struct HasEquality<std::vector<T>> : HasEquality<T> {};

/// @return whether the values are known to be the same
template <typename T>
bool isKnownEqual(const T& left, const T& right) {
    if constexpr (HasEquality<T>::value)
        return left == right;
    else
        return static_cast<void>(left), static_cast<void>(right), false;
}

} // namespace connector::configuration::detail
