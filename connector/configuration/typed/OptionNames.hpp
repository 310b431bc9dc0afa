/// The names of an enumeration's values in files.
#pragma once

namespace connector::configuration {

/// Specialised by the application for each enumeration that options have:
///
///     template <>
///     struct connector::configuration::OptionNames<Level> {
///         static constexpr std::pair<std::string_view, Level> names[] = {
///             {"quiet", Level::Quiet}, {"loud", Level::Loud}};
///     };
///
/// ASCII case is ignored when reading. A value may have several names; the first one is written.
template <typename Enumeration>
struct OptionNames;

} // namespace connector::configuration
