#include "Lockstep.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <numeric>
#include <sstream>
#include <string>

namespace test::model {

namespace {

std::string indented(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines)
        text += "    " + line + '\n';
    return text;
}

std::string textOf(const Program& program) {
    std::ostringstream text;
    for (std::size_t i = 0; i < program.size(); ++i)
        text << "    " << i + 1 << ". " << program[i].text << '\n';
    return text.str();
}

/// @return whether the journals since the last comparison are equal
bool expectSameJournals(std::uint64_t seed, const Program& program, const std::string& where,
                        ProgramRunner& library, ProgramRunner& model) {
    const std::vector<std::string> actual = library.takeJournal();
    const std::vector<std::string> expected = model.takeJournal();
    if (actual == expected)
        return true;
    ADD_FAILURE() << "Seed " << seed << ": library and model differ at " << where
                  << ". The environment variable CONNECTOR_SEED=" << seed
                  << " runs it alone.\n  The program:\n"
                  << textOf(program) << "  The model:\n"
                  << indented(expected) << "  The library:\n"
                  << indented(actual);
    return false;
}

} // namespace

std::vector<std::uint64_t> seedsUpTo(std::size_t count) {
    if (const char* const chosen = std::getenv("CONNECTOR_SEED"))
        return {std::stoull(chosen)};
    std::vector<std::uint64_t> seeds(count);
    std::iota(seeds.begin(), seeds.end(), 1);
    return seeds;
}

bool expectSame(std::uint64_t seed, const Program& program, ProgramRunner& library,
                ProgramRunner& model) {
    bool same = expectSameJournals(seed, program, "the start", library, model);
    for (std::size_t i = 0; i < program.size() && same; ++i) {
        library.perform(program[i]);
        model.perform(program[i]);
        same = expectSameJournals(seed, program, "step " + std::to_string(i + 1), library, model);
    }
    library.finish();
    model.finish();
    return same && expectSameJournals(seed, program, "the end", library, model);
}

} // namespace test::model
