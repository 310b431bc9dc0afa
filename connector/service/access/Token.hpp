/// A secret that a client shows to be let in.
#pragma once

#include <string>

namespace connector::service {

class Token {
public:
    /// @param newText  visible ASCII only, not empty
    explicit Token(std::string newText) : text(std::move(newText)) {}

    /// The time that this takes says nothing about the token but its length.
    bool matches(const std::string& shown) const;

private:
    const std::string text;
};

/// Reads a token from a file; one line break at its end is no part of it.
/// @throws std::runtime_error "Token file could not be read: " + path, "Token file is empty: " + path,
///         or "Token is not one line of visible ASCII of at most 4096 bytes: " + path
Token readToken(const std::string& path);

} // namespace connector::service
