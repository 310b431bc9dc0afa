/// How the conformance kit makes the publishers that it tests.
#pragma once

#include <connector/async/PublisherAPI.hpp>

#include <exception>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace connector::testing {

/// @tparam T  the values; comparable with ==
template <typename T>
struct PublisherFactory {
    using Value = T;
    using Publisher = reactive_streams::PublisherAPI<T>;

    /// @return a new publisher, which nobody has subscribed to
    std::function<std::shared_ptr<Publisher>()> make;

    /// Has the publisher send a value, now or when it is requested; it may keep only the newest.
    /// Called from several threads at a time.
    std::function<void(Publisher&, const T&)> offer;

    /// Ends the stream normally. Is given the last pointer, so that the end of the publisher will
    /// do.
    std::function<void(std::shared_ptr<Publisher>)> complete;

    /// Ends the stream with an error. Empty: the publisher never fails.
    std::function<void(Publisher&, std::exception_ptr)> fail;

    /// At least three different values.
    std::vector<T> values;

    /// The numbers of the rules that the publisher does not follow on purpose, as "3.9". They are
    /// skipped. Say in its documentation why.
    std::set<std::string> otherwise;
};

} // namespace connector::testing
