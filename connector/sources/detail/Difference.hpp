/// What has to be told when one table takes the place of another.
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
