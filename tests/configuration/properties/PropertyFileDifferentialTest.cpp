/// Compares the library's parser with the reference parser on random inputs, in everything
/// observable.

#include "configuration/properties/parsing/Observation.hpp"

#include <gtest/gtest.h>

#include <iterator>
#include <random>

namespace test {

namespace {

// The special characters, some ordinary ones, and some combinations.
const std::string pieces[] = {
    "a",    "b",     "c",    ":",    "=",    "#",    "!",     "\\",     "u",
    "0",    "4",     "9",    "F",    " ",    "\t",   "\r",    "\n",     std::string(1, '\0'),
    "\x80", "\xC3",  "\xFF", "\n",   "\\\n", "\\\r", "\\u00", "\\u20a", "\\ud83d",
    "a=b",  "key :", " = ",  "\r\n", "\n#",  "\n!",  "\n ",   "=\n",    "b\n"};

/// Random choices. The same seed gives the same choices on every system.
class RandomChoice {
public:
    explicit RandomChoice(unsigned seed) : engine(seed) {}

    /// @return a number below `count`
    std::size_t below(std::size_t count) { return engine() % count; }

    template <typename T, std::size_t size>
    const T& oneOf(const T (&items)[size]) {
        return items[below(size)];
    }

private:
    std::mt19937 engine;
};

std::string randomText(RandomChoice& random) {
    std::string text;
    for (std::size_t count = random.below(24); count > 0; --count)
        text += random.oneOf(pieces);
    return text;
}

ParseInput randomInput(unsigned seed) {
    constexpr Supply supplies[] = {Supply::pieces, Supply::reused, Supply::unbuffered};
    RandomChoice random(seed);
    ParseInput input;
    input.text = randomText(random);
    input.supply = random.oneOf(supplies);
    input.pieceSize = 1 + random.below(input.text.size() + 2);
    return input;
}

/// Compares the two parsers for the seeds from 1 to `seeds`. `change` modifies each input.
template <typename Change>
void compare(unsigned seeds, Change change) {
    for (unsigned seed = 1; seed <= seeds; ++seed) {
        ParseInput input = randomInput(seed);
        RandomChoice random(~seed);
        change(input, random);
        SCOPED_TRACE("seed " + std::to_string(seed) + ": " + testing::PrintToString(input.text));
        expectSame(observeReference(input), observeLibrary(input));
        if (testing::Test::HasFailure())
            return; // one failing input is enough
    }
}

InputEnd randomReadError(RandomChoice& random) {
    constexpr InputEnd inputEnds[] = {InputEnd::throwing, InputEnd::settingBadBit};
    return random.oneOf(inputEnds);
}

std::ios_base::iostate randomExceptions(RandomChoice& random) {
    constexpr std::ios_base::iostate masks[] = {
        std::ios_base::badbit,
        std::ios_base::failbit,
        std::ios_base::eofbit,
        std::ios_base::badbit | std::ios_base::failbit | std::ios_base::eofbit,
    };
    return random.oneOf(masks);
}

} // namespace

TEST(PropertyFileDifferential, RandomInputsAreReadAsByTheReference) {
    compare(6000, [](ParseInput&, RandomChoice&) {});
}

TEST(PropertyFileDifferential, ReadErrorsAreHandledAsByTheReference) {
    compare(3000,
            [](ParseInput& input, RandomChoice& random) { input.end = randomReadError(random); });
}

TEST(PropertyFileDifferential, StreamsThatThrowAtTheEndThrowAsWithTheReference) {
    compare(3000, [](ParseInput& input, RandomChoice& random) {
        input.exceptions = randomExceptions(random);
    });
}

TEST(PropertyFileDifferential, ReadErrorsOfStreamsThatThrowAreThrownAsByTheReference) {
    compare(3000, [](ParseInput& input, RandomChoice& random) {
        input.end = randomReadError(random);
        input.exceptions = randomExceptions(random);
    });
}

TEST(PropertyFileDifferential, AThrowingSinkOrWatcherLeavesTheStreamAsTheReferenceDoes) {
    compare(3000, [](ParseInput& input, RandomChoice& random) {
        input.throwingEvent = 1 + random.below(6);
    });
}

TEST(PropertyFileDifferential, LongRandomInputsAreReadAsByTheReference) {
    compare(40, [](ParseInput& input, RandomChoice& random) {
        while (input.text.size() < 20000)
            input.text += randomText(random);
        input.pieceSize = 1 + random.below(4096);
    });
}

} // namespace test
