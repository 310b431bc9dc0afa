/// What the tests of the source share.
#pragma once

#include "support/Client.hpp"
#include "support/EtcdServer.hpp"
#include "support/Eventually.hpp"
#include "support/Observer.hpp"
#include "support/Proxy.hpp"

#include "sources/Shown.hpp"

#include <connector/etcd/EtcdSource.hpp>

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace test {

using namespace std::chrono_literals;
using connector::configuration::OptionValue;
using connector::etcd::Options;
using connector::etcd::Startup;

/// A source knows within four seconds that it is stale; the machine gets a little more.
constexpr auto staleTime = 4'500ms;

/// All keys of the tests are below this prefix.
inline const std::string prefix = "fleet/";

/// Options with short pauses, and time for writes on a busy machine. The times after which a source
/// is stale are those of every source.
inline Options optionsFor(std::vector<std::string> endpoints) {
    Options options;
    options.endpoints = std::move(endpoints);
    options.prefix = prefix;
    options.startup = Startup::Wait(30s);
    options.timing.longestPause = 3s;
    options.writeTimeout = 30s;
    return options;
}

inline std::shared_ptr<EtcdSource> sourceOf(const std::string& endpoint) {
    return std::make_shared<EtcdSource>(optionsFor({endpoint}));
}

inline bool becomesCurrent(const EtcdSource& source) {
    return eventually([&] { return source.status().state == State::Current; });
}

/// @return whether the source, which is current, says within four seconds that it is stale
/// @param disturb  from this moment
template <typename Disturb>
bool isStaleInTime(EtcdSource& source, Disturb disturb) {
    Observer observer(source);
    disturb();
    return observer.waitFor(State::Stale, staleTime);
}

/// @return whether the source gets to have exactly what the engine has
inline bool agrees(const EtcdSource& source, Client& client) {
    return eventually([&] { return textsOf(source) == client.list(prefix).values; });
}

} // namespace test
