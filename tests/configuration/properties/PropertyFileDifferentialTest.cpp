/// Random inputs, compared with the plain reading of the rules in everything that can be seen.

#include "configuration/properties/parsing/Observation.hpp"

#include <gtest/gtest.h>

#include <iterator>
#include <random>

namespace test {

namespace {

// The characters that mean something, some that do not, and some of what they make together.
const std::string pieces[] = {
    "a",    "b",     "c",    ":",    "=",    "#",    "!",     "\\",     "u",
    "0",    "4",     "9",    "F",    " ",    "\t",   "\r",    "\n",     std::string(1, '\0'),
    "\x80", "\xC3",  "\xFF", "\n",   "\\\n", "\\\r", "\\u00", "\\u20a", "\\ud83d",
    "a=b",  "key :", " = ",  "\r\n", "\n#",  "\n!",  "\n ",   "=\n",    "b\n"};

/// Random choices that are the same on every system for the same seed.
class Dice {
public:
    explicit Dice(unsigned seed) : engine(seed) {}

    /// @return a number below `count`
    std::size_t below(std::size_t count) { return engine() % count; }

    template <typename T, std::size_t size>
    const T& oneOf(const T (&items)[size]) {
        return items[below(size)];
    }

private:
    std::mt19937 engine;
};

std::string randomText(Dice& dice) {
    std::string text;
    for (std::size_t count = dice.below(24); count > 0; --count)
        text += dice.oneOf(pieces);
    return text;
}

ParseInput randomInput(unsigned seed) {
    constexpr Supply supplies[] = {Supply::pieces, Supply::reused, Supply::unbuffered};
    Dice dice(seed);
    ParseInput input;
    input.text = randomText(dice);
    input.supply = dice.oneOf(supplies);
    input.pieceSize = 1 + dice.below(input.text.size() + 2);
    return input;
}

/// Compares the two parsers for many seeds. `change` makes the inputs special.
template <typename Change>
void compare(unsigned seeds, Change change) {
    for (unsigned seed = 1; seed <= seeds; ++seed) {
        ParseInput input = randomInput(seed);
        Dice dice(~seed);
        change(input, dice);
        SCOPED_TRACE("seed " + std::to_string(seed) + ": " + testing::PrintToString(input.text));
        expectSame(observeReference(input), observeLibrary(input));
        if (testing::Test::HasFailure())
            return; // one input is enough to look into
    }
}

Ending randomReadError(Dice& dice) {
    constexpr Ending endings[] = {Ending::throwing, Ending::turningBad};
    return dice.oneOf(endings);
}

std::ios_base::iostate randomExceptions(Dice& dice) {
    constexpr std::ios_base::iostate masks[] = {
        std::ios_base::badbit,
        std::ios_base::failbit,
        std::ios_base::eofbit,
        std::ios_base::badbit | std::ios_base::failbit | std::ios_base::eofbit,
    };
    return dice.oneOf(masks);
}

} // namespace

TEST(PropertyFileDifferential, RandomInputsAreReadAsCharacterByCharacter) {
    compare(6000, [](ParseInput&, Dice&) {});
}

TEST(PropertyFileDifferential, ReadErrorsLeaveWhatCharacterByCharacterLeaves) {
    compare(3000, [](ParseInput& input, Dice& dice) { input.ending = randomReadError(dice); });
}

TEST(PropertyFileDifferential, StreamsThatThrowAtTheEndThrowWhatTheyThrowCharacterByCharacter) {
    compare(3000, [](ParseInput& input, Dice& dice) { input.exceptions = randomExceptions(dice); });
}

TEST(PropertyFileDifferential, ReadErrorsInStreamsThatThrowAreThrownAsCharacterByCharacter) {
    compare(3000, [](ParseInput& input, Dice& dice) {
        input.ending = randomReadError(dice);
        input.exceptions = randomExceptions(dice);
    });
}

TEST(PropertyFileDifferential, AThrowingSinkOrWatcherLeavesTheStreamAsCharacterByCharacter) {
    compare(3000, [](ParseInput& input, Dice& dice) { input.throwingEvent = 1 + dice.below(6); });
}

TEST(PropertyFileDifferential, LongRandomInputsAreReadAsCharacterByCharacter) {
    compare(40, [](ParseInput& input, Dice& dice) {
        while (input.text.size() < 20000)
            input.text += randomText(dice);
        input.pieceSize = 1 + dice.below(4096);
    });
}

} // namespace test
