/// The secret by which clients authenticate themselves.
#pragma once

#include <string>

namespace connector::service {

/// Immutable. May be used from any thread.
class Token {
public:
    /// @param newText  visible ASCII characters, at least one
    explicit Token(std::string newText) : text(std::move(newText)) {}

    /// Compares in constant time: the duration reveals at most the token's length.
    bool matches(const std::string& received) const;

private:
    const std::string text;
};

/// Reads a token from a file. A line break at the end of the file is not part of the token.
/// @throws std::runtime_error "Token file could not be read: " + path, "Token file is empty: " +
///         path, or "Token is not one line of visible ASCII of at most 4096 bytes: " + path
Token readToken(const std::string& path);

/// The same for a client, which sends the token.
std::string readTokenText(const std::string& path);

} // namespace connector::service
