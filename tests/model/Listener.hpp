/// A subscriber of either side: writes down what it is told, then does what its script says.
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
    /// @param newReaction  may do and throw anything; in a publisher's destructor it throws nothing
    Listener(Journal& newJournal, std::string newName, std::function<void(Event)> newReaction)
        : journal(newJournal), name(std::move(newName)), reaction(std::move(newReaction)) {}

    ~Listener() { journal.note(name + " is destroyed"); }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    void onSubscribe() { hear("onSubscribe", Event::Subscribed); }
    void onNext(int value) { hear("onNext " + std::to_string(value), Event::Value); }
    void onComplete() { hear("onComplete", Event::Completed); }
    void onUnexpected(const std::string& what) { journal.note(name + " " + what); }

private:
    void hear(const std::string& what, Event event) {
        journal.note(name + " " + what);
        reaction(event);
    }

    Journal& journal;
    const std::string name;
    const std::function<void(Event)> reaction;
};

} // namespace test::model
