/// diff
#pragma once

#include "arguments/Arguments.hpp"
#include "comparing/Differences.hpp"
#include "display/Terminal.hpp"

#include <functional>
#include <string>

namespace connector_config {

/// Reads the options of a service. Only the program for the network can do that.
using ReadService =
    std::function<ComparedOptions(const connector::service::HttpClientOptions& service)>;

struct DiffResult {
    std::string output;
    bool isSame;
};

/// Compares the effective options of both sides. Names options on standard error that cannot be
/// compared because their values are masked; they count as the same.
/// @param readService  may be empty if no side is a service
/// @throws what reading a snapshot or a file throws, and what readService throws
DiffResult diff(const Arguments& arguments, const Terminal& terminal,
                const ReadService& readService);

} // namespace connector_config
