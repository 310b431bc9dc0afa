/// The rules of property files once more, as slowly and as plainly as can be.
#pragma once

#include <functional>
#include <istream>
#include <map>
#include <string>

namespace test {

/// What a parser tells the world, in this order for each property.
struct ParseListeners {
    std::function<void(const std::string& line)> log;
    std::function<void(const std::string& key)> watcher;
};

/// Parses `stream` into `options`, one get at a time, as the library's parser has to.
/// Written for comparison with it, and kept apart from it: neither may borrow from the other.
void parseByReference(std::istream& stream, std::map<std::string, std::string>& options,
                      const ParseListeners& listeners);

} // namespace test
