/// The value of an option.
#pragma once

#include <connector/Export.hpp>
#include <connector/async/CachedValuePublisher.hpp>
#include <connector/async/Future.hpp>

#include <boost/variant.hpp>

#include <functional>
#include <string>
#include <vector>

namespace connector::configuration {

/// One value of one of twelve types. The order of the alternatives is part of the interface: it is
/// what which() answers, it makes `false` the default value, and the JSON tags follow it. The
/// scalar strings stand UTF-16 first and the vectors of strings 8-bit first. This crossing is
/// intended: other programs depend on it.
///
/// Beware of string literals: `OptionValue value("text")` holds the bool `true`, because a pointer
/// converts to bool before it converts to a string. Write std::string("text"), or "text"s.
using OptionValue = boost::variant<bool,                       // 0: a flag
                                   int,                        // 1: signed, 32 bits
                                   unsigned int,               // 2: unsigned, 32 bits
                                   double,                     // 3: IEEE 754, 64 bits
                                   std::u16string,             // 4: UTF-16 text
                                   std::string,                // 5: 8-bit text, any bytes
                                   std::vector<bool>,          // 6
                                   std::vector<int>,           // 7
                                   std::vector<unsigned int>,  // 8
                                   std::vector<double>,        // 9
                                   std::vector<std::string>,   // 10
                                   std::vector<std::u16string> // 11
                                   >;

} // namespace connector::configuration

namespace connector {

// Instantiated in the library. They are declared here, before their first use: a compiler that
// instantiates one of them without this declaration gives it hidden visibility, since Boost's types
// have the visibility of the program that is compiled.
extern template class CONNECTOR_EXPORT detail::SharedFutureState<configuration::OptionValue>;
extern template class CONNECTOR_EXPORT Future<configuration::OptionValue>;
extern template class CONNECTOR_EXPORT
    reactive_streams::CachedValuePublisher<configuration::OptionValue, std::function<void()>>;

} // namespace connector
