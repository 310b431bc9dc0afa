/// Plays programs on the library and on the model side by side.
#pragma once

#include "Player.hpp"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace test::model {

/// @return the seeds from 1 to `count`; only the one that the environment variable CONNECTOR_SEED
///         names, if it does
std::vector<std::uint64_t> seedsUpTo(std::size_t count);

/// Compares the journals after every step. At the first difference it fails with the whole program,
/// both journals of that step and how to run this seed alone.
/// @return whether there was none
bool expectSame(std::uint64_t seed, const Program& program, Player& library, Player& model);

} // namespace test::model
