/// Sends arbitrary bytes to the service as a request.
#include <connector/service/access/Policy.hpp>
#include <connector/service/messages/MessageService.hpp>
#include <connector/service/messages/ParsedRequest.hpp>

#include <connector/configuration/ConfigurationImpl.hpp>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

namespace {

using namespace connector::service;

/// No files may be added: the fuzzer must not read files of this machine.
const Policy policy({""}, std::nullopt, connector::service::Secrets());

const MessageService& service() {
    static const MessageService service(
        std::make_shared<connector::configuration::ConfigurationImpl>(),
        [](connector::Message& message) { return policy.authorize(message); });
    return service;
}

/// Ends the program unless the reply is a JSON object on one line.
void check(const std::string& reply) {
    if (reply.find('\n') != reply.npos)
        std::abort();
    if (reply.size() <= maxRequestSize)
        parseRequest(reply); // an exception ends the program, too
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    check(service().reply(std::string(reinterpret_cast<const char*>(data), size)).text);
    return 0;
}
