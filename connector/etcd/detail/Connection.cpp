#include <connector/etcd/detail/Connection.hpp>

#include <connector/etcd/detail/BlockedSignals.hpp>
#include <connector/etcd/detail/Channel.hpp>
#include <connector/etcd/detail/Keys.hpp>
#include <connector/etcd/detail/UnaryCall.hpp>

#include <algorithm>

namespace connector::etcd::detail {

namespace {

/// The first channel starts the threads of gRPC.
std::shared_ptr<grpc::Channel> openChannel(const Endpoint& endpoint, const TlsFiles& files) {
    const BlockedSignals blocked;
    return makeChannel(endpoint, files);
}

void prepare(grpc::ClientContext& context, const std::string& token,
             Connection::Clock::time_point deadline) {
    const auto left = deadline - Connection::Clock::now();
    addMetadata(context, token);
    context.set_deadline(std::chrono::system_clock::now() +
                         std::chrono::duration_cast<std::chrono::system_clock::duration>(left));
}

} // namespace

Connection::Connection(const Options& newOptions, const Endpoint& endpoint)
    : options(newOptions), url(endpoint.url), channel(openChannel(endpoint, options.tls)),
      kv(etcdserverpb::KV::NewStub(channel)) {
}

grpc::Status Connection::greet(Clock::time_point deadline) {
    const auto limit = std::min(deadline, Clock::now() + options.timing.answerTimeout);
    if (!options.user.empty() && token.empty()) {
        const grpc::Status status = authenticate(limit);
        if (!status.ok())
            return status;
    }
    etcdserverpb::RangeRequest request;
    request.set_key(probeKey(options.prefix));
    request.set_keys_only(true);
    etcdserverpb::RangeResponse ignored;
    const grpc::Status status = range(request, ignored, limit);
    // A user who may only write is answered, too.
    return status.error_code() == grpc::StatusCode::PERMISSION_DENIED ? grpc::Status::OK : status;
}

grpc::Status Connection::authenticate(Clock::time_point deadline) {
    etcdserverpb::AuthenticateRequest request;
    request.set_name(options.user);
    request.set_password(passwordOf(options));
    etcdserverpb::AuthenticateResponse answer;
    grpc::ClientContext context;
    prepare(context, "", deadline);
    const grpc::Status status =
        etcdserverpb::Auth::NewStub(channel)->Authenticate(&context, request, &answer);
    if (status.error_code() == grpc::StatusCode::FAILED_PRECONDITION)
        return grpc::Status::OK; // authentication is switched off
    token = answer.token();
    return status;
}

grpc::Status Connection::range(const etcdserverpb::RangeRequest& request,
                               etcdserverpb::RangeResponse& answer, Clock::time_point deadline) {
    grpc::ClientContext context;
    prepare(context, token, deadline);
    return kv->Range(&context, request, &answer);
}

grpc::Status Connection::write(const etcdserverpb::TxnRequest& request,
                               etcdserverpb::TxnResponse& answer, Clock::time_point deadline) {
    grpc::ClientContext context;
    prepare(context, token, deadline);
    return kv->Txn(&context, request, &answer);
}

std::string Connection::describe(const grpc::Status& failure) const {
    return describe(causeOf(failure));
}

} // namespace connector::etcd::detail
