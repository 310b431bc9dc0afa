/// Random programs against the reference model of a configuration: registry, lookups and watched
/// options.

#include "ConfigurationModel.hpp"
#include "ConfigurationGenerator.hpp"
#include "LibraryConfiguration.hpp"
#include "Lockstep.hpp"

#include <gtest/gtest.h>

#include <typeinfo>

using namespace test::model;

namespace {

constexpr std::size_t steps = 60;

/// Every program ends with a lookup of all keys. One in three then destroys the configuration and
/// continues without it.
Program programOf(std::uint64_t seed) {
    ConfigurationGenerator generator(seed);
    Program program = generator.program(steps);
    program.push_back(ConfigurationGenerator::enumerate());
    for (const std::string& key : ConfigurationGenerator::keys())
        program.push_back(ConfigurationGenerator::getOption(key));
    if (seed % 3 != 0)
        return program;
    program.push_back(ConfigurationGenerator::destroy());
    for (Operation& operation : generator.program(steps / 6))
        program.push_back(std::move(operation));
    return program;
}

bool passes(std::uint64_t seed, bool logs) {
    ProgramRunner library(
        [logs](Journal& journal) { return std::make_unique<LibraryConfiguration>(journal, logs); },
        nullptr);
    ProgramRunner model(
        [logs](Journal& journal) {
            return std::make_unique<ConfigurationModel>(journal, logs, typeid(OwnSource).name());
        },
        nullptr);
    return expectSame(seed, programOf(seed), library, model);
}

TEST(ConfigurationModel, RandomProgramsHaveTheSameJournalAsTheModel) {
    for (const std::uint64_t seed : seedsUpTo(MODEL_SEEDS)) {
        const bool logs = seed % 2 == 0;
        if (!passes(seed, logs))
            break;
    }
}

} // namespace
