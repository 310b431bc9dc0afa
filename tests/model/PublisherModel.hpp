/// The reference model of a publisher, for one thread. It follows the rules literally and shares no
/// code with the library.
#pragma once

#include "Stream.hpp"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace test::model {

class PublisherModel : public std::enable_shared_from_this<PublisherModel> {
public:
    PublisherModel(std::function<void()> newOnFinish, int newCapacity)
        : onFinish(std::move(newOnFinish)), capacity(newCapacity) {}
    ~PublisherModel();
    PublisherModel(const PublisherModel&) = delete;
    PublisherModel& operator=(const PublisherModel&) = delete;

    void onNext(int value);
    void subscribe(std::shared_ptr<Listener> newSubscriber);
    void followCompletion(std::function<void(bool)> newOnEnd);
    void request(std::uint64_t count);
    void cancel();

private:
    enum class State { Active, Completed, Cancelled };

    bool isFull() const;
    bool canDeliver() const;
    void deliver();
    void deliverOnDemand();
    void end(State finalState);
    void reportEnd();

    const std::function<void()> onFinish;
    const int capacity;
    std::vector<int> pending; // oldest first
    std::shared_ptr<Listener> subscriber;
    std::uint64_t demand = 0;
    State state = State::Active;
    bool delivering = false;
    bool isFutureTaken = false;
    bool isEndReported = false;
    std::function<void(bool)> onEnd;
};

class ModelStream final : public Stream {
public:
    explicit ModelStream(std::shared_ptr<PublisherModel> newPublisher)
        : publisher(std::move(newPublisher)), observed(publisher) {}

    void offer(int value) override;
    void subscribe(std::shared_ptr<Listener> listener) override;
    void followCompletion(std::function<void(bool)> onEnd) override;
    void request(std::uint64_t count) override;
    void cancel() override;
    void release() override { std::exchange(publisher, nullptr).reset(); }
    bool isAlive() const override { return !observed.expired(); }

private:
    std::shared_ptr<PublisherModel> publisher;
    const std::weak_ptr<PublisherModel> observed;
    std::weak_ptr<PublisherModel> subscription;
};

} // namespace test::model
