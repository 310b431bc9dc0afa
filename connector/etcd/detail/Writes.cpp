#include <connector/etcd/detail/Writes.hpp>

#include <connector/etcd/Unknown.hpp>
#include <connector/etcd/detail/Channel.hpp>
#include <connector/etcd/detail/Session.hpp>
#include <connector/etcd/detail/Transaction.hpp>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace connector::etcd::detail {

namespace {

std::exception_ptr notWritten(const std::string& cause) {
    return std::make_exception_ptr(std::runtime_error("Not written: " + cause));
}

} // namespace

Writes::Writes(Mailbox& newMailbox, std::string newPrefix)
    : mailbox(newMailbox), prefix(std::move(newPrefix)) {
}

void Writes::submit(std::unique_ptr<Write> write) {
    const std::lock_guard<std::mutex> lock(mutex);
    submitted.push_back(std::move(write));
}

void Writes::takeSubmitted() {
    std::vector<std::unique_ptr<Write>> taken;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        taken.swap(submitted);
    }
    for (std::unique_ptr<Write>& write : taken)
        waiting.push_back(std::move(write));
}

void Writes::send(Session& session, grpc::CompletionQueue& queue, const std::string& token) {
    takeSubmitted();
    while (!waiting.empty()) {
        auto next = std::move(waiting.front());
        waiting.pop_front();
        sendOne(std::move(next), session, queue, token);
    }
}

void Writes::sendOne(std::shared_ptr<Write> write, Session& session, grpc::CompletionQueue& queue,
                     const std::string& token) {
    const auto left = write->deadline - Clock::now();
    const auto deadline = std::chrono::system_clock::now() +
                          std::chrono::duration_cast<std::chrono::system_clock::duration>(left);
    auto call = std::make_shared<UnaryCall<Response>>(
        token, deadline, [this, write](const grpc::Status& status, Response& response) {
            answered(write, status, response);
        });
    const auto isOver = [](const std::weak_ptr<Call>& weak) { return weak.expired(); };
    sent.erase(std::remove_if(sent.begin(), sent.end(), isOver), sent.end());
    sent.push_back(call);
    const auto stub = etcdserverpb::KV::NewStub(session.openChannel());
    call->start([&](grpc::ClientContext* context) {
        return stub->PrepareAsyncTxn(context, write->request, &queue);
    });
}

void Writes::answered(const std::shared_ptr<Write>& write, const grpc::Status& status,
                      const Response& response) {
    if (status.ok() && response.succeeded()) {
        mailbox.post([promise = write->promise, revision = response.header().revision()] {
            promise->setValue(revision);
        });
    } else if (status.ok()) {
        fail(*write, conflictOf(write->request, response, prefix));
    } else if (wantsToken(status) && !write->wasRefused && !isStopped) {
        write->wasRefused = true; // the engine did nothing, so the write may be sent again
        hasRefusal = true;
        waiting.push_front(write);
    } else if (isRefusal(status)) {
        fail(*write, notWritten(causeOf(status)));
    } else {
        fail(*write, std::make_exception_ptr(
                         Unknown(isStopped ? "the source was stopped" : causeOf(status))));
    }
}

void Writes::fail(const Write& write, std::exception_ptr failure) {
    mailbox.post([promise = write.promise, failure = std::move(failure)] {
        promise->setException(failure);
    });
}

void Writes::expire(const std::string& cause) {
    takeSubmitted();
    while (!waiting.empty() && waiting.front()->deadline <= Clock::now()) {
        fail(*waiting.front(), notWritten(cause));
        waiting.pop_front();
    }
}

Writes::Clock::time_point Writes::due() const {
    return waiting.empty() ? Clock::time_point::max() : waiting.front()->deadline;
}

void Writes::stop() {
    takeSubmitted();
    isStopped = true;
    for (const std::shared_ptr<Write>& write : std::exchange(waiting, {}))
        fail(*write, notWritten("the source was stopped"));
    for (const std::weak_ptr<Call>& weak : sent) {
        if (const auto call = weak.lock())
            call->cancel();
    }
}

bool Writes::takeRefusal() {
    return std::exchange(hasRefusal, false);
}

} // namespace connector::etcd::detail
