/// Runs programs on the library and on the model step by step.
#pragma once

#include "ProgramRunner.hpp"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace test::model {

/// @return the seeds from 1 to `count`, or only the value of the environment variable
///         CONNECTOR_SEED if it is set
std::vector<std::uint64_t> seedsUpTo(std::size_t count);

/// Compares the journals after every step. The first difference is a failure, which shows the whole
/// program, both journals of that step and how to run this seed alone.
/// @return whether the journals were equal
bool expectSame(std::uint64_t seed, const Program& program, ProgramRunner& library,
                ProgramRunner& model);

} // namespace test::model
