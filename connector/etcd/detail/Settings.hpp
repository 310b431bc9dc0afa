/// The options of a source, checked.
#pragma once

#include <connector/etcd/Options.hpp>
#include <connector/etcd/detail/Endpoint.hpp>

#include <string>
#include <vector>

namespace connector::etcd::detail {

struct Settings {
    Options options;
    std::vector<Endpoint> endpoints;
};

/// @throws std::invalid_argument when an endpoint cannot be read, there is none, or the prefix is
///         empty
Settings checked(Options options);

/// Reads the password file again, if there is one.
/// @throws std::runtime_error "The file cannot be read: PATH"
std::string passwordOf(const Options& options);

/// @throws std::runtime_error "The file cannot be read: PATH"
std::string contentOf(const std::filesystem::path& path);

} // namespace connector::etcd::detail
