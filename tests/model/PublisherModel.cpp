#include "PublisherModel.hpp"

#include <limits>
#include <stdexcept>

namespace test::model {

PublisherModel::~PublisherModel() {
    if (state != State::Active)
        return;
    end(State::Completed);
    if (subscriber)
        subscriber->onComplete();
    onFinish();
}

void PublisherModel::onNext(int value) {
    if (state != State::Active)
        return;
    if (subscriber && demand > 0 && pending.empty()) {
        --demand;
        subscriber->onNext(value);
        return;
    }
    while (isFull())
        pending.erase(pending.begin());
    pending.push_back(value);
    deliver();
}

bool PublisherModel::isFull() const {
    if (pending.empty() || capacity < 0)
        return false;
    return pending.size() >= static_cast<std::size_t>(capacity);
}

void PublisherModel::subscribe(std::shared_ptr<Listener> newSubscriber) {
    if (subscriber)
        throw std::invalid_argument("Only one subscription allowed.");
    subscriber = std::move(newSubscriber);
    subscriber->onSubscribe();
    deliver();
}

void PublisherModel::request(std::uint64_t count) {
    const bool wraps = demand + count < demand;
    demand = wraps ? std::numeric_limits<std::uint64_t>::max() : demand + count;
    deliver();
}

void PublisherModel::cancel() {
    if (state != State::Active)
        return;
    end(State::Cancelled);
    onFinish();
}

void PublisherModel::followCompletion(std::function<void(bool)> newOnEnd) {
    if (isFutureTaken)
        throw std::runtime_error("Promise already returned a future.");
    isFutureTaken = true;
    if (isEndReported)
        throw std::runtime_error(
            "Future already returned it's value or has an associated continuation.");
    onEnd = std::move(newOnEnd);
    if (state != State::Active)
        reportEnd();
}

/// The continuation takes the result. Afterwards the future counts as not taken.
void PublisherModel::reportEnd() {
    if (!onEnd)
        return;
    isFutureTaken = false;
    isEndReported = true;
    onEnd(state == State::Completed);
}

void PublisherModel::end(State finalState) {
    state = finalState;
    reportEnd();
}

bool PublisherModel::canDeliver() const {
    return state == State::Active && subscriber && demand > 0 && !pending.empty();
}

/// A nested call does not start a second delivery, because the running one sees the change.
void PublisherModel::deliver() {
    if (delivering)
        return;
    delivering = true;
    try {
        deliverOnDemand();
    } catch (...) {
        delivering = false;
        throw;
    }
    delivering = false;
}

void PublisherModel::deliverOnDemand() {
    while (canDeliver()) {
        --demand;
        const int value = pending.front();
        pending.erase(pending.begin());
        subscriber->onNext(value);
    }
}

void ModelStream::offer(int value) {
    if (const auto kept = publisher)
        kept->onNext(value);
}

/// A refused subscriber is not called and leaves the subscription unchanged.
void ModelStream::subscribe(std::shared_ptr<Listener> listener) {
    if (const auto kept = publisher) {
        subscription = kept;
        kept->subscribe(std::move(listener));
    }
}

void ModelStream::followCompletion(std::function<void(bool)> onEnd) {
    if (publisher)
        publisher->followCompletion(std::move(onEnd));
}

void ModelStream::request(std::uint64_t count) {
    if (const auto alive = subscription.lock())
        alive->request(count);
}

void ModelStream::cancel() {
    if (const auto alive = subscription.lock())
        alive->cancel();
}

} // namespace test::model
