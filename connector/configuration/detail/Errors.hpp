/// The texts of everything that the configuration and its sources throw or put into futures. They
/// are part of the interface: callers compare them, so not one character changes. A text that ends
/// in a blank is followed by a key, a name or a path.
#pragma once

namespace connector::configuration::detail::errors {

inline constexpr const char* sourceNameTaken = "Source with the requested name already exists: ";

inline constexpr const char* noSuchOption = "No option with the specified key was found: ";
inline constexpr const char* noWritableSource = "No writable configuration source for key: ";
inline constexpr const char* sourceNotWritable = "Source not found or not writable: ";
inline constexpr const char* noSuchSource = "No source with that name: "; // of plan only
inline constexpr const char* nullText = "A null text cannot be stored.";

// Seen only when a source answers has with true and then does not have the key.
inline constexpr const char* noValueForKey = "No option value for key: ";
inline constexpr const char* noOptionForKey = "No option for key: ";

inline constexpr const char* keyNotInSource = "unordered_map::at: key not found";
inline constexpr const char* fileNotOpened = "Property file could not be opened: ";
inline constexpr const char* fileNotWritable = "PropertyFileSource does not support writing";

} // namespace connector::configuration::detail::errors
