/// The completions of the program for shells.
#pragma once

#include "documentation/Grammar.hpp"
#include "documentation/HelpDocument.hpp"

#include <string>

namespace connector_config {

/// @return a file for share/bash-completion/completions; it needs no other
std::string bashCompletion(const GrammarCommand& program);

/// @return a file _connector-config for a directory in fpath
std::string zshCompletion(const GrammarCommand& program, const HelpDocument& help);

/// @return a file for fish/vendor_completions.d
std::string fishCompletion(const GrammarCommand& program, const HelpDocument& help);

} // namespace connector_config
