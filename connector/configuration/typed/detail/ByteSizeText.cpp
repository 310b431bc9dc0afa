#include <connector/configuration/typed/detail/Decimal.hpp>
#include <connector/configuration/typed/detail/UnitText.hpp>

#include <array>

namespace connector::configuration::detail {

namespace {

struct Unit {
    std::string_view name;
    std::uint64_t bytes;
};

constexpr std::array<Unit, 9> units{{{"TiB", std::uint64_t{1} << 40},
                                     {"TB", 1'000'000'000'000},
                                     {"GiB", std::uint64_t{1} << 30},
                                     {"GB", 1'000'000'000},
                                     {"MiB", std::uint64_t{1} << 20},
                                     {"MB", 1'000'000},
                                     {"KiB", std::uint64_t{1} << 10},
                                     {"kB", 1'000},
                                     {"B", 1}}};

} // namespace

std::optional<std::uint64_t> readBytes(std::string_view text) {
    const std::size_t length = leadingNumber(text);
    const std::optional<Decimal> number = readDecimal(text.substr(0, length));
    if (!number)
        return std::nullopt;
    const std::string_view name = text.substr(length);
    if (name.empty())
        return wholeQuotient(*number, 1, 1);
    for (const Unit& unit : units) {
        if (unit.name == name)
            return wholeQuotient(*number, unit.bytes, 1);
    }
    return std::nullopt;
}

std::string writeBytes(std::uint64_t bytes) {
    for (const Unit& unit : units) {
        if (bytes != 0 && bytes % unit.bytes == 0)
            return std::to_string(bytes / unit.bytes).append(unit.name);
    }
    return "0B";
}

std::string byteSizePattern() {
    return "^[0-9]+(\\.[0-9]+)?(B|[kMGT]B|[KMGT]iB)?$";
}

} // namespace connector::configuration::detail
