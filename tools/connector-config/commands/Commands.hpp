/// What the program can do. All but watch and serveMessages return what goes to standard output.
#pragma once

#include "arguments/Arguments.hpp"
#include "display/Terminal.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>

#include <string>

namespace connector_config {

using connector::configuration::ConfigurationImpl;

/// The value of an option.
/// @throws std::runtime_error if there is none
std::string get(ConfigurationImpl& configuration, const Arguments& arguments);

/// The keys that begin with the prefix, byte by byte.
std::string keys(ConfigurationImpl& configuration, const Arguments& arguments);

/// The options whose keys begin with the prefix, and who supplies them.
std::string show(ConfigurationImpl& configuration, const Arguments& arguments,
                 const Terminal& terminal);

/// What each source says about a key, and where a new value would go.
std::string explain(ConfigurationImpl& configuration, const Arguments& arguments,
                    const Terminal& terminal);

/// Writes values as they come, while it reads changes from standard input. What is wrong with a
/// change is said on standard error.
/// @throws OutputFailure
void watch(ConfigurationImpl& configuration, const Arguments& arguments);

/// Answers messages, on standard input or over HTTP.
/// @throws OutputFailure
/// @throws std::runtime_error for HTTP arguments that are no good
void serveMessages(ConfigurationImpl& configuration, const Arguments& arguments);

/// @return all keys that begin with the prefix, sorted
std::vector<std::string> keysWithPrefix(ConfigurationImpl& configuration,
                                        const std::string& prefix);

} // namespace connector_config
