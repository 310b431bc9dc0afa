/// The two ways out.
#pragma once

#include <string>
#include <system_error>

namespace connector_config {

/// Standard output takes no more.
class OutputFailure : public std::system_error {
public:
    explicit OutputFailure(int error);

    /// @return whether nobody reads any more, which is no news to whoever stopped reading
    bool readerLeft() const;
};

/// Writes the whole text, at once.
/// @throws OutputFailure
void writeOutput(const std::string& text);

/// Writes "connector-config: " and the message, escaped, as a line to standard error.
void complain(const std::string& message);

} // namespace connector_config
