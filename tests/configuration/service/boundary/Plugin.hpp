/// The functions that the plugin exports to programs that load it at run time.
///
/// The plugin links the configuration library. Results come back through arguments, because the
/// functions have C names.
#pragma once

#include <connector/ServiceProvider.hpp>

#include <memory>
#include <string>

namespace test {

/// Creates a running service with a new configuration that has the option net.port = 80.
using MakeProvider = void(std::shared_ptr<connector::ServiceProvider>& provider);

/// Creates a ConfigurationGet.
using MakeGet = void(const std::string& key, std::unique_ptr<connector::Message>& message);

/// Reads a ConfigurationGet from a null JSON object, which throws Poco::NullPointerException.
using ReadNullObject = void();

/// Reads an int option as text, which throws boost::bad_get.
using ReadWrongType = void();

} // namespace test
