/// Numbers and texts as bytes, and back.
#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace connector::etcd::detail {

/// Appends to a text. Numbers have eight bytes, the lowest first; a text follows its length.
class Packer {
public:
    void add(std::uint64_t number) {
        for (int i = 0; i < 8; ++i)
            bytes.push_back(static_cast<char>(number >> (8 * i) & 0xFF));
    }
    void add(std::string_view text) {
        add(std::uint64_t{text.size()});
        bytes.append(text);
    }

    std::string take() { return std::move(bytes); }

private:
    std::string bytes;
};

/// Reads what a Packer has written.
class Unpacker {
public:
    explicit Unpacker(std::string_view newRest) : rest(newRest) {}

    bool isAtEnd() const { return rest.empty(); }

    /// @throws std::runtime_error "damaged" when there is not enough left
    std::uint64_t number() {
        const std::string_view taken = bytes(8);
        std::uint64_t result = 0;
        for (std::size_t i = 0; i < 8; ++i)
            result |= std::uint64_t{static_cast<unsigned char>(taken[i])} << (8 * i);
        return result;
    }
    std::string text() { return std::string(bytes(number())); }

private:
    std::string_view bytes(std::uint64_t count) {
        if (count > rest.size())
            throw std::runtime_error("damaged");
        const std::string_view taken = rest.substr(0, count);
        rest.remove_prefix(count);
        return taken;
    }

    std::string_view rest;
};

} // namespace connector::etcd::detail
