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

/// All keys of the tests are below this prefix.
inline const std::string prefix = "fleet/";

/// Options with short pauses. The times after which a source is stale are those of every source.
inline Options optionsFor(std::vector<std::string> endpoints) {
    Options options;
    options.endpoints = std::move(endpoints);
    options.prefix = prefix;
    options.startup = Startup::Wait(30s);
    options.timing.longestPause = 3s;
    return options;
}

inline std::shared_ptr<EtcdSource> sourceOf(const std::string& endpoint) {
    return std::make_shared<EtcdSource>(optionsFor({endpoint}));
}

/// @return whether the source gets to have exactly what the engine has
inline bool agrees(const EtcdSource& source, Client& client) {
    return eventually([&] { return textsOf(source) == client.list(prefix).values; });
}

} // namespace test
