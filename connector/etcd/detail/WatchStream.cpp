#include <connector/etcd/detail/WatchStream.hpp>

#include <utility>

namespace connector::etcd::detail {

WatchStream::WatchStream(const std::string& token, OnMessage newOnMessage, OnEnd newOnEnd)
    : onMessage(std::move(newOnMessage)), onEnd(std::move(newOnEnd)) {
    addMetadata(context, token);
}

void WatchStream::start(const std::shared_ptr<grpc::Channel>& channel, grpc::CompletionQueue& queue,
                        etcdserverpb::WatchRequest request) {
    first = std::move(request);
    stub = etcdserverpb::Watch::NewStub(channel);
    stream = stub->PrepareAsyncWatch(&context, &queue);
    stream->StartCall(starting.begin());
}

void WatchStream::cancel() {
    isCancelled = true;
    context.TryCancel();
}

void WatchStream::requestProgress() {
    if (isCancelled || starting.isPending() || writing.isPending() || finishing.isPending())
        return;
    etcdserverpb::WatchRequest request;
    request.mutable_progress_request();
    stream->Write(request, writing.begin());
}

void WatchStream::started(bool ok) {
    if (isCancelled)
        return;
    if (!ok) {
        end();
        return;
    }
    stream->Write(first, writing.begin());
    stream->Read(&message, reading.begin());
}

/// A failed write ends the stream; the pending read reports that.
void WatchStream::wrote(bool) {
}

void WatchStream::read(bool ok) {
    if (isCancelled)
        return;
    if (!ok) {
        end();
        return;
    }
    onMessage(message);
    if (isCancelled) // meanwhile
        return;
    message.Clear();
    stream->Read(&message, reading.begin());
}

void WatchStream::end() {
    stream->Finish(&status, finishing.begin());
}

void WatchStream::finished(bool) {
    onEnd(status);
}

} // namespace connector::etcd::detail
