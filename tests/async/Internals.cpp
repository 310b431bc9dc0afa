#include "async/Internals.hpp"

#include "async/PrivateMember.hpp"

#include <mutex>
#include <utility>

namespace test {

using connector::detail::FutureStatus;
using connector::reactive_streams::PublisherState;

struct StateMutex {
    friend std::mutex State::*privateMember(StateMutex);
};
template struct ExposeMember<StateMutex, &State::mutex>;

struct StateStatus {
    friend FutureStatus State::*privateMember(StateStatus);
};
template struct ExposeMember<StateStatus, &State::status>;

struct StateValueTaken {
    friend bool State::*privateMember(StateValueTaken);
};
template struct ExposeMember<StateValueTaken, &State::valueTaken>;

struct PublisherMutex {
    friend std::mutex IntPublisher::*privateMember(PublisherMutex);
};
template struct ExposeMember<PublisherMutex, &IntPublisher::mutex>;

struct PublisherStateField {
    friend PublisherState IntPublisher::*privateMember(PublisherStateField);
};
template struct ExposeMember<PublisherStateField, &IntPublisher::state>;

struct PublisherError {
    friend std::exception_ptr IntPublisher::*privateMember(PublisherError);
};
template struct ExposeMember<PublisherError, &IntPublisher::error>;

struct PublisherDemand {
    friend std::uint64_t IntPublisher::*privateMember(PublisherDemand);
};
template struct ExposeMember<PublisherDemand, &IntPublisher::demand>;

void setStatus(State& state, FutureStatus status) {
    const std::lock_guard<std::mutex> lock(state.*privateMember(StateMutex()));
    state.*privateMember(StateStatus()) = status;
}

bool isWaitedFor(State& state) {
    const std::lock_guard<std::mutex> lock(state.*privateMember(StateMutex()));
    return state.*privateMember(StateValueTaken()) &&
           state.*privateMember(StateStatus()) == FutureStatus::Pending;
}

void setState(IntPublisher& publisher, PublisherState state) {
    const std::lock_guard<std::mutex> lock(publisher.*privateMember(PublisherMutex()));
    publisher.*privateMember(PublisherStateField()) = state;
}

void setError(IntPublisher& publisher, std::exception_ptr error) {
    const std::lock_guard<std::mutex> lock(publisher.*privateMember(PublisherMutex()));
    publisher.*privateMember(PublisherError()) = std::move(error);
}

std::uint64_t demandOf(IntPublisher& publisher) {
    const std::lock_guard<std::mutex> lock(publisher.*privateMember(PublisherMutex()));
    return publisher.*privateMember(PublisherDemand());
}

} // namespace test
