/// Results that are stored without memory of their own.
#pragma once

#include <connector/Export.hpp>
#include <connector/async/detail/Errors.hpp>

#include <exception>
#include <stdexcept>

namespace connector::detail {

/// What a state stores if it must not fail and there is no memory for the cell of its result.
///
/// A promise that is destroyed stores an exception. A publisher that is destroyed or cancelled
/// stores a bool. A std::bad_alloc would end the program in the first two cases, and leave the
/// stream inconsistent in the third. The cells never change: readers copy from them.
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

/// The only instance, allocated when the program is loaded. It is never destroyed, because a state
/// may outlive all static objects.
CONNECTOR_EXPORT inline PreallocatedResults& preallocatedResults = *new PreallocatedResults;

} // namespace connector::detail
