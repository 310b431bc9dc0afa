/// A provider that records the calls of its handlers and replies as a test tells it to.
#pragma once

#include "configuration/service/Messages.hpp"

#include <connector/configuration/service/ConfigurationServiceProvider.hpp>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace test {

class RecordingProvider : public connector::configuration::ConfigurationServiceProvider {
public:
    using AddPropertyFileSource = connector::configuration::AddPropertyFileSource;
    using ConfigurationGet = connector::configuration::ConfigurationGet;
    using ConfigurationKeys = connector::configuration::ConfigurationKeys;
    using ConfigurationSet = connector::configuration::ConfigurationSet;

    /// The arguments of a handler, which may move from them.
    struct Call {
        connector::Message* request;
        connector::Address& address;
        std::shared_ptr<connector::Context>& context;
    };

    Reply handle(std::unique_ptr<ConfigurationGet>&& request, connector::Address&& address,
                 std::shared_ptr<connector::Context>&& context) override {
        return record("Get", request, address, context);
    }
    Reply handle(std::unique_ptr<ConfigurationSet>&& request, connector::Address&& address,
                 std::shared_ptr<connector::Context>&& context) override {
        return record("Set", request, address, context);
    }
    Reply handle(std::unique_ptr<ConfigurationKeys>&& request, connector::Address&& address,
                 std::shared_ptr<connector::Context>&& context) override {
        return record("Keys", request, address, context);
    }
    Reply handle(std::unique_ptr<AddPropertyFileSource>&& request, connector::Address&& address,
                 std::shared_ptr<connector::Context>&& context) override {
        return record("AddPropertyFileSource", request, address, context);
    }

    std::vector<std::string> calls; ///< the names of the requests, in order
    MessagePtr kept;                ///< the last request, if keepsRequests is set
    bool keepsRequests = false;
    std::function<Reply(const Call&)> answer = [](const Call&) {
        return connector::makeReadyFuture<MessagePtr>(std::make_unique<connector::Message>());
    };

private:
    template <typename Request>
    Reply record(const char* name, std::unique_ptr<Request>& request, connector::Address& address,
                 std::shared_ptr<connector::Context>& context) {
        calls.emplace_back(name);
        connector::Message* const received = request.get();
        if (keepsRequests)
            kept = std::move(request);
        return answer({received, address, context});
    }
};

} // namespace test
