/// The changes to report when a table is replaced.
#pragma once

#include <connector/sources/TableChange.hpp>

#include <string>
#include <vector>

namespace connector::sources::detail {

/// Compares values with ==.
TableChange differenceOf(const Table& before, const Table& after);

/// @return all keys of a change, in ascending order; they refer to the change
std::vector<const std::string*> keysInOrder(const TableChange& change);

} // namespace connector::sources::detail
