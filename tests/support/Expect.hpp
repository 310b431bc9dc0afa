/// Expectations that gtest does not have.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <typeinfo>

namespace test {

/// Expects that `statement` throws exactly `Exception`, not a derived class, with this text.
/// Usage: expectThrows<std::runtime_error>("text", [&] { ... });
template <typename Exception, typename Statement>
void expectThrows(const std::string& text, Statement statement) {
    try {
        static_cast<void>(statement()); // a future that it returns is of no interest
        ADD_FAILURE() << "expected an exception: " << text;
    } catch (const std::exception& thrown) {
        EXPECT_EQ(typeid(Exception).name(), std::string(typeid(thrown).name()));
        EXPECT_EQ(text, thrown.what());
    } catch (...) {
        ADD_FAILURE() << "expected a std::exception: " << text;
    }
}

} // namespace test
