/// What is wrong with a JSON document, and where.
#pragma once

#include <exception>
#include <string>
#include <utility>

namespace connector::configuration::detail {

/// A member that is missing or wrong. Its place gets longer on the way up.
class BadMember : public std::exception {
public:
    BadMember(std::string newPlace, std::string newProblem)
        : place(std::move(newPlace)), problem(std::move(newProblem)) {}

    /// @param outer  the member that has the place in it
    BadMember within(const std::string& outer) const {
        const bool isJoined = place.empty() || place.front() == '[';
        return {outer + (isJoined ? "" : ".") + place, problem};
    }

    /// @return "PLACE: PROBLEM"
    std::string text() const { return place.empty() ? problem : place + ": " + problem; }

private:
    std::string place; // for example "entries[2].value"
    std::string problem;
};

} // namespace connector::configuration::detail
