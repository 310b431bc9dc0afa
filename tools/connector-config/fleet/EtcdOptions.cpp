#include "fleet/EtcdOptions.hpp"

#include <chrono>

namespace connector_config {

using connector::etcd::Options;
using connector::etcd::Startup;

namespace {

constexpr std::chrono::seconds longestWait{5}; // for an answer

Startup startupOf(EtcdArgument::Start start) {
    switch (start) {
    case EtcdArgument::Start::Cached:
        return Startup::Cached();
    case EtcdArgument::Start::Empty:
        return Startup::Empty();
    case EtcdArgument::Start::Wait:
        break;
    }
    return Startup::Wait(longestWait);
}

} // namespace

Options etcdOptionsOf(const EtcdArgument& argument) {
    Options options;
    options.endpoints = argument.endpoints;
    options.prefix = argument.prefix;
    options.user = argument.user;
    options.passwordFile = argument.passwordFile;
    options.tls = {argument.authorities, argument.certificate, argument.key};
    options.cacheFile = argument.cacheFile;
    options.startup = startupOf(argument.start);
    options.writeTimeout = longestWait;
    return options;
}

} // namespace connector_config
