/// Reads snapshots.
#pragma once

#include <connector/configuration/SourceSnapshot.hpp>

#include <Poco/Dynamic/Var.h>

#include <vector>

namespace connector::configuration::detail {

/// @throws BadMember  see BadMember.hpp
std::vector<SourceSnapshot> readSources(const Poco::Dynamic::Var& document);

} // namespace connector::configuration::detail
