/// The rules of property files step by step, without any optimisation.
#pragma once

#include <connector/configuration/OptionValue.hpp>

#include <istream>
#include <string>
#include <unordered_map>

namespace bench {

/// Reads a stream with one get per character, as docs/property-files.md describes it.
void parseLiterally(std::istream& stream,
                    std::unordered_map<std::string, connector::configuration::OptionValue>& table);

} // namespace bench
