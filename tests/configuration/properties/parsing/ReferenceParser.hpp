/// A second, simple and slow implementation of the rules of property files.
#pragma once

#include <functional>
#include <istream>
#include <map>
#include <string>

namespace test {

/// The callbacks of a parser, called in this order for each property.
struct ParseListeners {
    std::function<void(const std::string& line)> log;
    std::function<void(const std::string& key)> watcher;
};

/// Parses `stream` into `options`, one character at a time. Shares no code with the library's
/// parser, so that a comparison of the two is meaningful.
void parseByReference(std::istream& stream, std::map<std::string, std::string>& options,
                      const ParseListeners& listeners);

} // namespace test
