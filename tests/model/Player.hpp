/// Plays a program on one side, the library's or the model's, and keeps its journal.
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

class Player;

/// One step of a program, for whichever side plays it.
struct Operation {
    std::string text;
    std::function<std::string(Player&)> run; ///< says the outcome; empty when there is none
};

using Program = std::vector<Operation>;

/// In a script: the stream of the subscriber that is called. Every other index of a stream is taken
/// modulo their number.
inline constexpr std::size_t itsOwn = std::numeric_limits<std::size_t>::max();

/// What a subscriber does when it is called: the operations, then perhaps a throw.
struct Reaction {
    std::vector<Operation> operations;
    bool throws = false;
};

struct Script {
    Reaction onSubscribe;
    std::vector<Reaction> onNext; ///< to the first values; the later ones are just taken
    Reaction onComplete;          ///< throws nothing: it runs in destructors
    std::string text;
};

class Player {
public:
    using SubjectMaker = std::function<std::unique_ptr<Subject>(Journal&)>;
    using PublisherMaker = std::function<std::unique_ptr<Stream>(std::function<void()> onFinish)>;

    /// @param makePublisher  of publishers that belong to no configuration
    Player(const SubjectMaker& makeSubject, PublisherMaker makePublisher);

    /// Does one step, and notes it, its outcome and everything that happens meanwhile.
    void perform(const Operation& operation);

    /// Destroys the configuration, then lets go of every publisher.
    void finish();

    /// @return what was noted since the last call, and which publishers are alive now
    std::vector<std::string> takeJournal();

    // What operations do.
    Subject& configuration(); ///< throws when it is gone
    void destroyConfiguration();
    void watch(const std::string& key);
    /// @param script  of a subscriber to the new stream
    void watch(const std::string& key, const std::shared_ptr<const Script>& script);
    void addPublisher();
    void subscribe(std::size_t index, const std::shared_ptr<const Script>& script);
    void followCompletion(std::size_t index);
    /// Does it to one of the streams; to none when there is none.
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
