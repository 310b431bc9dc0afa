/// The sender of a message.
#pragma once

#include <string>
#include <utility>

namespace connector {

/// The sender of a message, in the form that the transport uses. Services pass it on unchanged.
class Address {
public:
    Address() = default;
    explicit Address(std::string newText) : text(std::move(newText)) {}

    const std::string& toString() const { return text; }

private:
    std::string text;
};

} // namespace connector
