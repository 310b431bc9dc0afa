/// The observable events of one side of a model test, as text. The library and the model write the
/// same line for the same event, so their journals can be compared line by line.
#pragma once

#include <boost/core/demangle.hpp>

#include <exception>
#include <set>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

namespace test::model {

class Journal {
public:
    void note(std::string line) { lines.push_back(std::move(line)); }

    /// @return the lines since the last call
    std::vector<std::string> take() { return std::exchange(lines, {}); }

private:
    std::vector<std::string> lines;
};

// The outcome of an operation as text. It distinguishes exceptions that are thrown from failures in
// a future, and exceptions of different types with the same text.

inline std::string describe(const std::exception& exception) {
    return boost::core::demangle(typeid(exception).name()) + ": " + exception.what();
}

inline std::string failed(const std::exception& exception) {
    return "fails with " + describe(exception);
}

inline std::string thrown(const std::exception& exception) {
    return "throws " + describe(exception);
}

inline std::string answered(int value) {
    return "answers " + std::to_string(value);
}

inline std::string answered(bool value) {
    return value ? "answers true" : "answers false";
}

inline std::string answered(const std::set<std::string>& keys) {
    std::string text = "answers";
    for (const std::string& key : keys)
        text += " '" + key + "'";
    return text;
}

inline std::string answered(const std::string& key, const std::string& source, int value) {
    return "answers " + key + "@" + source + " = " + std::to_string(value);
}

} // namespace test::model
