/// Everything observable about one parse.
#pragma once

#include "configuration/properties/parsing/SupplyBuffer.hpp"

#include <connector/configuration/sources/PropertyFileSource.hpp>

#include <cstddef>
#include <ios>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace test {

/// The input of a parse, and the failures that are injected.
struct ParseInput {
    std::string text;
    Supply supply = Supply::pieces;
    std::size_t pieceSize = 1;
    InputEnd end = InputEnd::regular;
    std::ios_base::iostate exceptions = std::ios_base::goodbit; ///< which state bits throw
    std::size_t throwingEvent =
        0; ///< number of the event whose log sink or watcher throws; 0: none
};

/// An event of the parser, with the position and state of the stream at that moment.
struct ParseEvent {
    std::string text; ///< "log: " and the line, or "watcher: " and the key
    std::streamoff position;
    std::ios_base::iostate state;
};

bool operator==(const ParseEvent& left, const ParseEvent& right);
std::ostream& operator<<(std::ostream& stream, const ParseEvent& event);

struct Observation {
    std::map<std::string, std::string> options;
    std::vector<ParseEvent> events;
    std::string thrown; ///< type and text of the exception that left the parser; empty for none
    std::streamoff position = 0;
    std::ios_base::iostate state = std::ios_base::goodbit;

    std::vector<std::string> logLines() const;
    std::vector<std::string> watchedKeys() const;
};

Observation observeLibrary(const ParseInput& input);
Observation observeReference(const ParseInput& input);

/// Expects that two observations are equal.
void expectSame(const Observation& expected, const Observation& actual);

/// Expects that two observations have the same options and report them in the same order.
void expectSameProperties(const Observation& expected, const Observation& actual);

/// @return a source without options, loaded from an empty file
std::shared_ptr<connector::configuration::PropertyFileSource> makeEmptyPropertyFileSource();

/// @return all options of a source whose values are all strings
std::map<std::string, std::string> optionsOf(connector::configuration::ConfigurationSource& source);

} // namespace test
