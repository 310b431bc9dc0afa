/// A subscriber for the library or the model. It records each call, then runs its script.
#pragma once

#include "Journal.hpp"

#include <functional>
#include <string>
#include <utility>

namespace test::model {

class Listener {
public:
    enum class Event { Subscribed, Value, Completed };

    /// @param newJournal   outlives the listener
    /// @param newReaction  may do and throw anything, but must not throw in a publisher's
    ///                     destructor
    Listener(Journal& newJournal, std::string newName, std::function<void(Event)> newReaction)
        : journal(newJournal), name(std::move(newName)), reaction(std::move(newReaction)) {}

    ~Listener() { journal.note(name + " is destroyed"); }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    void onSubscribe() { record("onSubscribe", Event::Subscribed); }
    void onNext(int value) { record("onNext " + std::to_string(value), Event::Value); }
    void onComplete() { record("onComplete", Event::Completed); }
    void onUnexpected(const std::string& what) { journal.note(name + " " + what); }

private:
    void record(const std::string& what, Event event) {
        journal.note(name + " " + what);
        reaction(event);
    }

    Journal& journal;
    const std::string name;
    const std::function<void(Event)> reaction;
};

} // namespace test::model
