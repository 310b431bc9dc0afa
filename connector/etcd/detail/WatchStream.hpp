/// The stream of a watch.
#pragma once

#include <connector/etcd/detail/Operation.hpp>
#include <connector/etcd/detail/UnaryCall.hpp>

#include <etcdserverpb/rpc.grpc.pb.h>
#include <grpcpp/grpcpp.h>

#include <functional>
#include <memory>
#include <string>

namespace connector::etcd::detail {

/// Writes one request at a time and reads until the stream ends. Used by the network thread only.
class WatchStream : public Call, public std::enable_shared_from_this<WatchStream> {
public:
    using OnMessage = std::function<void(const etcdserverpb::WatchResponse&)>;
    using OnEnd = std::function<void(const grpc::Status&)>;

    WatchStream(const std::string& token, OnMessage newOnMessage, OnEnd newOnEnd);

    void start(const std::shared_ptr<grpc::Channel>& channel, grpc::CompletionQueue& queue,
               etcdserverpb::WatchRequest request);

    /// Asks for a sign of life. Does nothing while another request is being written.
    void requestProgress();

    /// Starts nothing afterwards, so the queue may be shut down.
    void cancel() override;

private:
    using Stream =
        grpc::ClientAsyncReaderWriter<etcdserverpb::WatchRequest, etcdserverpb::WatchResponse>;

    /// One kind of operation; keeps the stream alive while it is on the queue.
    class Step : public Operation {
    public:
        Step(WatchStream& newStream, void (WatchStream::*newReaction)(bool))
            : stream(newStream), reaction(newReaction) {}

        void* begin() {
            self = stream.shared_from_this();
            return tag();
        }
        bool isPending() const { return self != nullptr; }
        void completed(bool ok) override {
            const auto keptAlive = std::move(self);
            (stream.*reaction)(ok);
        }

    private:
        WatchStream& stream;
        void (WatchStream::*const reaction)(bool);
        std::shared_ptr<WatchStream> self;
    };

    void started(bool ok);
    void wrote(bool ok);
    void read(bool ok);
    void finished(bool ok);
    void end();

    bool isCancelled = false;
    grpc::ClientContext context;
    const OnMessage onMessage;
    const OnEnd onEnd;
    etcdserverpb::WatchRequest first;
    etcdserverpb::WatchResponse message;
    grpc::Status status;
    std::unique_ptr<etcdserverpb::Watch::Stub> stub;
    std::unique_ptr<Stream> stream;
    Step starting{*this, &WatchStream::started};
    Step writing{*this, &WatchStream::wrote};
    Step reading{*this, &WatchStream::read};
    Step finishing{*this, &WatchStream::finished};
};

} // namespace connector::etcd::detail
