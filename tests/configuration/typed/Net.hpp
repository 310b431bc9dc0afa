/// The settings that the tests of schemas declare.
#pragma once

#include <connector/configuration/typed/OptionSchema.hpp>

#include <array>
#include <chrono>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace test {

enum class Mode { Plain, Secure };

struct Limits {
    connector::configuration::ByteSize size{65536};
    int count = 10;
};

struct Net {
    int port = 8080;
    std::string host = "localhost";
    std::chrono::milliseconds patience{500};
    std::vector<std::string> peers;
    Mode mode = Mode::Plain;
    std::string password = "changeme";
    Limits limits;
};

} // namespace test

template <>
struct connector::configuration::OptionNames<test::Mode> {
    static constexpr std::array<std::pair<std::string_view, test::Mode>, 2> names{
        {{"plain", test::Mode::Plain}, {"secure", test::Mode::Secure}}};
};

namespace test {

inline connector::configuration::OptionSchema<Limits> limitsSchema() {
    using namespace connector::configuration;
    using namespace std::chrono_literals;
    return OptionSchema<Limits>()
        .option("size", &Limits::size, "of a request", inRange(ByteSize{1024}, ByteSize{1 << 20}))
        .option("count", &Limits::count, "of requests", oneOf({10, 20, 30}))
        .rule([](const Limits& limits) {
            return limits.size.bytes * static_cast<unsigned>(limits.count) > 1 << 24
                       ? std::string("size and count are too much together")
                       : std::string();
        });
}

inline connector::configuration::OptionSchema<Net> netSchema() {
    using namespace connector::configuration;
    using namespace std::chrono_literals;
    return OptionSchema<Net>("net")
        .option("port", &Net::port, "TCP port to listen on", inRange(1, 65535))
        .option("host", &Net::host, "address to listen on", notEmpty(),
                [](const std::string& host) {
                    return host == "nowhere" ? std::string("is nowhere") : std::string();
                })
        .option("patience", &Net::patience, "how long a request may take", inRange(10ms, 90s))
        .required("peers", &Net::peers, "addresses of the other nodes", notEmpty())
        .option("mode", &Net::mode, "of connections")
        .option("password", &Net::password, "of the administrator", oneOf({"changeme", "x"}))
        .group("limits", &Net::limits, limitsSchema())
        .rule([](const Net& net) {
            return net.mode == Mode::Secure && net.port < 1024
                       ? std::string("secure wants high ports")
                       : std::string();
        });
}

} // namespace test
