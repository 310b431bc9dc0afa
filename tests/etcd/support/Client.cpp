#include "Client.hpp"

#include <stdexcept>

namespace test {

namespace {

using std::chrono::milliseconds;

void setDeadline(grpc::ClientContext& context, milliseconds time) {
    context.set_wait_for_ready(true);
    context.set_deadline(std::chrono::system_clock::now() + time);
}

/// @return the end of the range of a prefix whose last byte is not 0xFF
std::string endOf(std::string prefix) {
    ++prefix.back();
    return prefix;
}

} // namespace

Client::Client(const std::string& endpoint) : target(endpoint.substr(endpoint.find("//") + 2)) {
    grpc::ChannelArguments arguments;
    arguments.SetInt(GRPC_ARG_USE_LOCAL_SUBCHANNEL_POOL, 1);
    arguments.SetInt(GRPC_ARG_INITIAL_RECONNECT_BACKOFF_MS, 100);
    arguments.SetInt(GRPC_ARG_MIN_RECONNECT_BACKOFF_MS, 500);
    arguments.SetInt(GRPC_ARG_MAX_RECONNECT_BACKOFF_MS, 200);
    arguments.SetMaxReceiveMessageSize(-1);
    kv = etcdserverpb::KV::NewStub(
        grpc::CreateCustomChannel(target, grpc::InsecureChannelCredentials(), arguments));
}

std::int64_t Client::put(const std::string& key, const std::string& value) {
    return write({{key, value}});
}

std::int64_t Client::erase(const std::string& key) {
    return write({{key, std::nullopt}});
}

std::int64_t Client::write(const Pairs& changes) {
    const auto revision = tryToWrite(changes, std::chrono::seconds(30));
    if (!revision)
        throw std::runtime_error("the second client cannot write");
    return *revision;
}

std::optional<std::int64_t> Client::tryToWrite(const Pairs& changes, milliseconds time) {
    etcdserverpb::TxnRequest request;
    for (const auto& [key, value] : changes) {
        etcdserverpb::RequestOp& operation = *request.add_success();
        if (value) {
            operation.mutable_request_put()->set_key(key);
            operation.mutable_request_put()->set_value(*value);
        } else {
            operation.mutable_request_delete_range()->set_key(key);
        }
    }
    grpc::ClientContext context;
    setDeadline(context, time);
    etcdserverpb::TxnResponse response;
    if (!kv->Txn(&context, request, &response).ok())
        return std::nullopt;
    return response.header().revision();
}

Client::Content Client::list(const std::string& prefix) {
    etcdserverpb::RangeRequest request;
    request.set_key(prefix);
    request.set_range_end(endOf(prefix));
    grpc::ClientContext context;
    setDeadline(context, std::chrono::seconds(30));
    etcdserverpb::RangeResponse response;
    const grpc::Status status = kv->Range(&context, request, &response);
    if (!status.ok())
        throw std::runtime_error("the second client cannot list: " + status.error_message());
    Content content;
    content.revision = response.header().revision();
    for (const auto& entry : response.kvs())
        content.values[entry.key().substr(prefix.size())] = entry.value();
    return content;
}

} // namespace test
