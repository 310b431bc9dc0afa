/// Any bytes as a request, which is what a line and a body are.
#include <connector/service/access/Policy.hpp>
#include <connector/service/messages/MessageService.hpp>
#include <connector/service/messages/RequestText.hpp>

#include <connector/configuration/ConfigurationImpl.hpp>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

namespace {

using namespace connector::service;

/// Files must not be added: what there is on this machine is none of the fuzzer's business.
const Policy policy({""}, std::nullopt, connector::service::Secrets());

const MessageService& service() {
    static const MessageService service(
        std::make_shared<connector::configuration::ConfigurationImpl>(),
        [](connector::Message& message) { return policy.judge(message); });
    return service;
}

/// Ends the program unless the reply is an object on one line.
void check(const std::string& reply) {
    if (reply.find('\n') != reply.npos)
        std::abort();
    if (reply.size() <= longestRequest)
        readRequest(reply); // throws, and that ends the program, too
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    check(service().reply(std::string(reinterpret_cast<const char*>(data), size)).text);
    return 0;
}
