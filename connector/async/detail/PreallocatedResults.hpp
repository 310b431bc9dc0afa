/// Results that are stored without memory of their own.
#pragma once

#include <connector/Export.hpp>
#include <connector/async/detail/Errors.hpp>

#include <exception>
#include <stdexcept>

namespace connector::detail {

/// What a state stores when no memory is left for the cell of its result, and must not fail.
///
/// A promise that is destroyed stores an exception. A publisher that is destroyed or cancelled stores
/// a bool. An exception would end the program in the first two cases, and leave a stream half ended
/// in the third. Nobody changes these cells: readers copy a bool and an exception pointer.
class CONNECTOR_EXPORT PreallocatedResults {
public:
    bool* value(bool which) { return &values[which ? 1 : 0]; }

    /// @return the exception of a promise that was destroyed before it was resolved
    std::exception_ptr* abandoned() { return &abandonedException; }

    /// @return whether `cell` is one of these, so that a state must not delete it
    bool contains(const void* cell) const {
        return cell == &values[0] || cell == &values[1] || cell == &abandonedException;
    }

private:
    bool values[2] = {false, true};
    std::exception_ptr abandonedException =
        std::make_exception_ptr(std::runtime_error(errors::promiseAbandoned));
};

/// The one instance, allocated when the program is loaded. It is never destroyed: states may be
/// destroyed after every static object.
CONNECTOR_EXPORT inline PreallocatedResults& preallocatedResults = *new PreallocatedResults;

} // namespace connector::detail
