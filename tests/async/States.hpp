/// Makes shared states with every status.
#pragma once

#include "async/Internals.hpp"

#include <exception>
#include <memory>
#include <stdexcept>

namespace test {

inline std::exception_ptr failure(const char* text) {
    return std::make_exception_ptr(std::runtime_error(text));
}

inline std::shared_ptr<State> pendingState() {
    return std::make_shared<State>();
}

inline std::shared_ptr<State> stateWith(int value) {
    auto state = pendingState();
    state->setValue(value);
    return state;
}

inline std::shared_ptr<State> failedState(const char* text) {
    auto state = pendingState();
    state->setException(failure(text));
    return state;
}

inline std::shared_ptr<State> cancelledState() {
    auto state = pendingState();
    state->cancel();
    return state;
}

} // namespace test
