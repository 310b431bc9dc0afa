/// A call with one request and one answer.
#pragma once

#include <connector/etcd/detail/Operation.hpp>

#include <grpcpp/grpcpp.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace connector::etcd::detail {

/// A call that can be cancelled. Used by the network thread only.
class Call {
public:
    virtual ~Call() = default;
    virtual void cancel() = 0;
};

/// @param token  empty: none
inline void addMetadata(grpc::ClientContext& context, const std::string& token) {
    // Without it, a member that is cut off from the others stays silent.
    context.AddMetadata("hasleader", "true");
    if (!token.empty())
        context.AddMetadata("token", token);
}

template <typename Response>
class UnaryCall final : public Operation,
                        public Call,
                        public std::enable_shared_from_this<UnaryCall<Response>> {
public:
    using Done = std::function<void(const grpc::Status&, Response&)>;

    UnaryCall(const std::string& token, std::chrono::system_clock::time_point deadline,
              Done newDone)
        : done(std::move(newDone)) {
        addMetadata(context, token);
        context.set_deadline(deadline);
    }

    /// @param prepare  makes the reader of the prepared call from the context
    template <typename Prepare>
    void start(Prepare prepare) {
        reader = prepare(&context);
        reader->StartCall();
        reader->Finish(&response, &status, tag());
        self = this->shared_from_this();
    }

    void cancel() override { context.TryCancel(); }

    void completed(bool) override {
        const auto keptAlive = std::move(self);
        done(status, response);
    }

private:
    grpc::ClientContext context;
    Response response;
    grpc::Status status;
    std::unique_ptr<grpc::ClientAsyncResponseReader<Response>> reader;
    Done done;
    std::shared_ptr<UnaryCall> self;
};

} // namespace connector::etcd::detail
