/// Runs a program on the library or on the model, and keeps the journal.
#pragma once

#include "Journal.hpp"
#include "Stream.hpp"
#include "Subject.hpp"

#include <cstddef>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace test::model {

class ProgramRunner;

/// One step of a program, for either side.
struct Operation {
    std::string text;
    std::function<std::string(ProgramRunner&)>
        run; ///< returns the outcome; empty when there is none
};

using Program = std::vector<Operation>;

/// In a script: the stream of the subscriber that is called. Other indexes are taken modulo the
/// number of streams.
inline constexpr std::size_t itsOwn = std::numeric_limits<std::size_t>::max();

/// What a subscriber does when it is called: runs the operations, then throws if `throws` is set.
struct Reaction {
    std::vector<Operation> operations;
    bool throws = false;
};

struct Script {
    Reaction onSubscribe;
    std::vector<Reaction> onNext; ///< for the first values; later ones have no reaction
    Reaction onComplete;          ///< must not throw, because it runs in destructors
    std::string text;
};

class ProgramRunner {
public:
    using SubjectMaker = std::function<std::unique_ptr<Subject>(Journal&)>;
    using PublisherMaker = std::function<std::unique_ptr<Stream>(std::function<void()> onFinish)>;

    /// @param newMakePublisher  creates publishers that belong to no configuration
    ProgramRunner(const SubjectMaker& makeSubject, PublisherMaker makePublisher);

    /// Runs one step. Records it, its outcome and every event during it.
    void perform(const Operation& operation);

    /// Destroys the configuration, then releases every publisher.
    void finish();

    /// @return the lines since the last call, and which publishers are alive now
    std::vector<std::string> takeJournal();

    // The actions of operations.
    Subject& configuration(); ///< throws when it is destroyed
    void destroyConfiguration();
    void watch(const std::string& key);
    /// @param script  of a subscriber to the new stream
    void watch(const std::string& key, const std::shared_ptr<const Script>& script);
    void addPublisher();
    void subscribe(std::size_t index, const std::shared_ptr<const Script>& script);
    void followCompletion(std::size_t index);
    /// Applies the action to one of the streams, if there are any.
    void withStream(std::size_t index, const std::function<void(Stream&)>& action);

private:
    std::size_t resolved(std::size_t index) const;
    std::shared_ptr<Listener> makeListener(std::size_t index,
                                           const std::shared_ptr<const Script>& script);
    void react(const std::string& name, std::size_t index, const Reaction& reaction);

    Journal journal;
    std::unique_ptr<Subject> subject;
    const PublisherMaker makePublisher;
    std::vector<std::unique_ptr<Stream>> streams; // never shrinks
    std::size_t listeners = 0;
    std::size_t current = 0; // the stream whose subscriber is called
};

} // namespace test::model
