#include "service/support/InProcessServer.hpp"

namespace test {

using connector::service::HttpLimits;
using connector::service::HttpOptions;

namespace {

HttpOptions optionsWith(const HttpLimits& limits) {
    HttpOptions options;
    options.writablePrefixes = {""};
    options.limits = limits;
    return options;
}

} // namespace

InProcessServer::InProcessServer(const HttpLimits& limits) : InProcessServer(optionsWith(limits)) {
}

InProcessServer::InProcessServer(const HttpOptions& options) : service(configuration, options) {
    service.start();
}

std::uint16_t InProcessServer::port() const {
    const std::string url = service.urls().front();
    return static_cast<std::uint16_t>(std::stoi(url.substr(url.rfind(':') + 1)));
}

} // namespace test
