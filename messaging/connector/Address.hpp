/// Where a message comes from.
#pragma once

#include <string>
#include <utility>

namespace connector {

/// The sender of a message, in whatever form the transport names its peers. Services pass it on.
class Address {
public:
    Address() = default;
    explicit Address(std::string newText) : text(std::move(newText)) {}

    const std::string& toString() const { return text; }

private:
    std::string text;
};

} // namespace connector
