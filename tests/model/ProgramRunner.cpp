#include "ProgramRunner.hpp"

#include <exception>
#include <stdexcept>
#include <utility>

namespace test::model {

namespace {

/// Selects the reaction of a script to an event.
class Reactions {
public:
    explicit Reactions(std::shared_ptr<const Script> newScript) : script(std::move(newScript)) {}

    const Reaction& to(Listener::Event event) {
        static const Reaction none;
        switch (event) {
        case Listener::Event::Subscribed:
            return script->onSubscribe;
        case Listener::Event::Completed:
            return script->onComplete;
        case Listener::Event::Value:
            break;
        }
        return values < script->onNext.size() ? script->onNext[values++] : none;
    }

private:
    const std::shared_ptr<const Script> script;
    std::size_t values = 0;
};

} // namespace

ProgramRunner::ProgramRunner(const SubjectMaker& makeSubject, PublisherMaker newMakePublisher)
    : subject(makeSubject(journal)), makePublisher(std::move(newMakePublisher)) {
}

void ProgramRunner::perform(const Operation& operation) {
    journal.note("> " + operation.text);
    try {
        const std::string outcome = operation.run(*this);
        if (!outcome.empty())
            journal.note(outcome);
    } catch (const std::exception& exception) {
        journal.note(thrown(exception));
    }
    journal.note("<");
}

void ProgramRunner::finish() {
    destroyConfiguration();
    for (std::size_t i = 0; i < streams.size(); ++i) // may grow in the loop
        streams[i]->release();
}

std::vector<std::string> ProgramRunner::takeJournal() {
    std::string alive = "alive: ";
    for (const auto& stream : streams)
        alive += stream->isAlive() ? '1' : '0';
    journal.note(std::move(alive));
    return journal.take();
}

Subject& ProgramRunner::configuration() {
    if (!subject)
        throw std::logic_error("the configuration is destroyed");
    return *subject;
}

void ProgramRunner::destroyConfiguration() {
    const std::unique_ptr<Subject> destroyed =
        std::move(subject); // unreachable for operations during destruction
}

void ProgramRunner::watch(const std::string& key) {
    auto stream = configuration().watchOption(key);
    streams.push_back(std::move(stream));
}

/// The finish callback calls the publisher, which is allowed because no lock is held.
void ProgramRunner::addPublisher() {
    const std::size_t index = streams.size();
    streams.push_back(makePublisher([this, index] {
        journal.note("finish callback " + std::to_string(index));
        streams[index]->request(1);
        streams[index]->offer(0);
    }));
}

std::size_t ProgramRunner::resolved(std::size_t index) const {
    return (index == itsOwn ? current : index) % streams.size();
}

void ProgramRunner::withStream(std::size_t index, const std::function<void(Stream&)>& action) {
    if (!streams.empty())
        action(*streams[resolved(index)]);
}

void ProgramRunner::watch(const std::string& key, const std::shared_ptr<const Script>& script) {
    watch(key);
    subscribe(streams.size() - 1, script);
}

void ProgramRunner::subscribe(std::size_t index, const std::shared_ptr<const Script>& script) {
    withStream(index,
               [&](Stream& stream) { stream.subscribe(makeListener(resolved(index), script)); });
}

void ProgramRunner::followCompletion(std::size_t index) {
    withStream(index, [this, index](Stream& stream) {
        const std::string name = "completion of stream " + std::to_string(resolved(index));
        stream.followCompletion(
            [this, name](bool completed) { journal.note(name + ' ' + answered(completed)); });
    });
}

std::shared_ptr<Listener> ProgramRunner::makeListener(std::size_t index,
                                                      const std::shared_ptr<const Script>& script) {
    const std::string name = "subscriber " + std::to_string(listeners++);
    return std::make_shared<Listener>(
        journal, name, [this, name, index, reactions = Reactions(script)](auto event) mutable {
            react(name, index, reactions.to(event));
        });
}

void ProgramRunner::react(const std::string& name, std::size_t index, const Reaction& reaction) {
    const std::size_t before = std::exchange(current, index);
    for (const Operation& operation : reaction.operations)
        perform(operation);
    current = before;
    if (reaction.throws)
        throw std::runtime_error(name + " throws");
}

} // namespace test::model
