/// The rules of property files, told to the machine word for word.
#pragma once

#include <connector/configuration/OptionValue.hpp>

#include <istream>
#include <string>
#include <unordered_map>

namespace bench {

/// Reads a stream one get at a time, one state a character, as docs/property-files.md tells it.
void parseLiterally(std::istream& stream,
                    std::unordered_map<std::string, connector::configuration::OptionValue>& table);

} // namespace bench
