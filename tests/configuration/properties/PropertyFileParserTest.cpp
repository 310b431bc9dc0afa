/// Every row of the table, parsed from every kind of stream buffer.

#include "configuration/properties/parsing/Observation.hpp"
#include "configuration/properties/parsing/PropertyRows.hpp"

#include <gtest/gtest.h>

#include <algorithm>

namespace test {

namespace {

constexpr Supply supplies[] = {Supply::pieces, Supply::reused, Supply::unbuffered};
constexpr InputEnd readErrors[] = {InputEnd::throwing, InputEnd::settingBadBit};

std::string description(const PropertyRow& row) {
    return "row in line " + std::to_string(row.line) + ", " + row.behaviour + ": " +
           testing::PrintToString(row.input);
}

ParseInput inOnePiece(const std::string& text) {
    ParseInput input;
    input.text = text;
    input.pieceSize = text.size() + 1;
    return input;
}

/// Expects the options and log lines of the row, and one watcher call for each log line.
void expectRow(const PropertyRow& row, const Observation& observation) {
    EXPECT_EQ((std::map<std::string, std::string>(row.options.begin(), row.options.end())),
              observation.options);
    EXPECT_EQ(row.logLines, observation.logLines());
    EXPECT_EQ(2 * row.logLines.size(), observation.events.size());
    EXPECT_EQ("", observation.thrown);
    EXPECT_EQ(static_cast<std::streamoff>(row.input.size()), observation.position);
    EXPECT_EQ(std::ios_base::eofbit | std::ios_base::failbit, observation.state);
}

/// Checks a text in pieces of every size up to its own, from every kind of stream buffer.
template <typename Check>
void inPiecesOfEverySize(const std::string& text, Check check) {
    ParseInput input;
    input.text = text;
    for (const Supply supply : supplies) {
        input.supply = supply;
        for (input.pieceSize = 1; input.pieceSize <= std::max<std::size_t>(text.size(), 1);
             ++input.pieceSize) {
            SCOPED_TRACE("supply " + std::to_string(static_cast<int>(supply)) + ", pieces of " +
                         std::to_string(input.pieceSize));
            check(input);
        }
    }
}

} // namespace

class PropertyFileRow : public testing::TestWithParam<PropertyRow> {};

TEST_P(PropertyFileRow, IsParsedAsListed) {
    for (const PropertyRow& row : lineBreakVariations(GetParam())) {
        SCOPED_TRACE(description(row));
        expectRow(row, observeLibrary(inOnePiece(row.input)));
    }
}

INSTANTIATE_TEST_SUITE_P(PropertyFile, PropertyFileRow, testing::ValuesIn(propertyRows()),
                         [](const auto& info) { return info.param.behaviour; });

TEST(PropertyFileRows, CallTheWatcherAfterEachLogLine) {
    const Observation seen = observeLibrary(inOnePiece("a=b\nc=d\na=e"));
    std::vector<std::string> events;
    for (const ParseEvent& event : seen.events)
        events.push_back(event.text);
    EXPECT_EQ((std::vector<std::string>{"log: Parsed property: a = b", "watcher: a",
                                        "log: Parsed property: c = d", "watcher: c",
                                        "log: Parsed final property: a = e", "watcher: a"}),
              events);
}

TEST(PropertyFileRows, AreParsedAlikeInPiecesOfEverySize) {
    for (const PropertyRow& original : propertyRows()) {
        for (const PropertyRow& row : lineBreakVariations(original)) {
            SCOPED_TRACE(description(row));
            inPiecesOfEverySize(row.input, [&row](const ParseInput& input) {
                expectRow(row, observeLibrary(input));
            });
        }
    }
}

TEST(PropertyFileRows, AreParsedAsByTheReference) {
    for (const PropertyRow& original : propertyRows()) {
        for (const PropertyRow& row : lineBreakVariations(original)) {
            SCOPED_TRACE(description(row));
            const ParseInput input = inOnePiece(row.input);
            expectRow(row, observeReference(input));
            expectSame(observeReference(input), observeLibrary(input));
        }
    }
}

TEST(PropertyFileRows, EndAtAReadErrorAsAtTheEndOfInput) {
    for (const PropertyRow& row : propertyRows()) {
        SCOPED_TRACE(description(row));
        for (std::size_t length = 0; length <= row.input.size(); ++length) {
            SCOPED_TRACE("read error after " + std::to_string(length) + " characters");
            ParseInput input = inOnePiece(row.input.substr(0, length));
            const Observation expected = observeReference(input);
            for (const InputEnd end : readErrors) {
                input.end = end;
                const Observation actual = observeLibrary(input);
                expectSameProperties(expected, actual);
                EXPECT_EQ("", actual.thrown);
                EXPECT_TRUE(actual.state & std::ios_base::badbit);
            }
        }
    }
}

TEST(PropertyFileRows, EndAtAReadErrorInPiecesOfEverySize) {
    for (const PropertyRow& row : propertyRows()) {
        SCOPED_TRACE(description(row));
        const Observation expected = observeReference(inOnePiece(row.input));
        inPiecesOfEverySize(row.input, [&expected](ParseInput input) {
            input.end = InputEnd::throwing;
            const Observation actual = observeLibrary(input);
            expectSameProperties(expected, actual);
            EXPECT_EQ(std::ios_base::badbit | std::ios_base::failbit, actual.state);
        });
    }
}

} // namespace test
