/// The commands of the program except serve and set. All except get and watch return the text for
/// standard output.
#pragma once

#include "arguments/Arguments.hpp"
#include "commands/NamedFile.hpp"
#include "commands/OptionReader.hpp"
#include "display/Terminal.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>

#include <string>
#include <vector>

namespace connector_config {

using connector::configuration::ConfigurationImpl;

struct GetResult {
    std::string output;                ///< for standard output
    std::vector<std::string> failures; ///< one message for each key that the output lacks
};

/// @return the values of options, in the order of the keys
/// @throws std::runtime_error if the values are for a shell and a key has no variable of its own
GetResult get(OptionReader& reader, const Arguments& arguments);

/// @return the keys that begin with the prefix, compared byte by byte
std::string keys(OptionReader& reader, const Arguments& arguments);

/// @return the options whose keys begin with the prefix, with types, values and sources
std::string show(OptionReader& reader, const Arguments& arguments, const Terminal& terminal);

/// @return the value of an option in each source, and which source a new value would be written to
std::string explain(OptionReader& reader, const Arguments& arguments, const Terminal& terminal);

/// Writes the values of options as they change, while it reads changes from standard input and
/// reloads files. Reports invalid changes on standard error.
/// @param files  of the sources; blockHangup must have been called before they were read
/// @throws OutputError
void watch(ConfigurationImpl& configuration, const Arguments& arguments, const NamedFiles& files);

} // namespace connector_config
