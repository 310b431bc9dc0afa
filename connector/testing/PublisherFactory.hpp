/// Creates and drives the publishers that the conformance kit tests.
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

    /// @return a new publisher without subscribers
    std::function<std::shared_ptr<Publisher>()> make;

    /// Makes the publisher send a value, now or once it is requested; the publisher may keep only
    /// the newest value. Called from several threads concurrently.
    std::function<void(Publisher&, const T&)> offer;

    /// Completes the stream. Receives the last pointer, so destroying the publisher is sufficient.
    std::function<void(std::shared_ptr<Publisher>)> complete;

    /// Fails the stream with an error. Empty: the publisher never fails.
    std::function<void(Publisher&, std::exception_ptr)> fail;

    /// At least three different values.
    std::vector<T> values;

    /// The numbers of the rules that the publisher deliberately does not follow, for example "3.9".
    /// They are skipped. The publisher's documentation should give the reason.
    std::set<std::string> otherwise;
};

} // namespace connector::testing
