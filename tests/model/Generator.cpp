#include "Generator.hpp"

#include <limits>
#include <utility>

namespace test::model {

namespace {

constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();

std::string textOf(const Reaction& reaction) {
    std::string text;
    for (const Operation& operation : reaction.operations)
        text += operation.text + "; ";
    return text + (reaction.throws ? "throw; " : "");
}

std::string textOf(const Script& script) {
    std::string text = "{ onSubscribe: " + textOf(script.onSubscribe);
    for (const Reaction& reaction : script.onNext)
        text += "onNext: " + textOf(reaction);
    return text + "onComplete: " + textOf(script.onComplete) + "}";
}

std::string nameOf(std::size_t index) {
    return index == itsOwn ? " (own)" : " (stream " + std::to_string(index) + ")";
}

Operation streamOperation(const std::string& text, std::size_t index,
                          std::function<void(Stream&)> action) {
    return {text + nameOf(index), [index, action = std::move(action)](ProgramRunner& runner) {
                runner.withStream(index, action);
                return std::string();
            }};
}

} // namespace

Program Generator::program(std::size_t steps) {
    Program program;
    while (program.size() < steps)
        program.push_back(operation());
    return program;
}

int Generator::value() {
    if (chance(85))
        ++lastValue;
    return lastValue;
}

/// In a script, usually the stream of the subscriber itself.
std::size_t Generator::stream() {
    return depth > 0 && chance(60) ? itsOwn : below(12);
}

Operation Generator::offer() {
    const int offered = value();
    return streamOperation("offer " + std::to_string(offered), stream(),
                           [offered](Stream& stream) { stream.offer(offered); });
}

Operation Generator::request() {
    const auto count = oneOf<std::uint64_t>({0, 1, 1, 1, 2, 2, 3, 5, most - 1, most});
    return streamOperation("request " + std::to_string(count), stream(),
                           [count](Stream& stream) { stream.request(count); });
}

Operation Generator::cancel() {
    return streamOperation("cancel", stream(), [](Stream& stream) { stream.cancel(); });
}

Operation Generator::release() {
    return streamOperation("release", stream(), [](Stream& stream) { stream.release(); });
}

Operation Generator::followCompletion() {
    const std::size_t index = stream();
    return {"follow completion" + nameOf(index), [index](ProgramRunner& runner) {
                runner.followCompletion(index);
                return std::string();
            }};
}

Operation Generator::subscribe() {
    const std::size_t index = stream();
    const auto plan = script();
    return {"subscribe" + nameOf(index) + ' ' + plan->text, [index, plan](ProgramRunner& runner) {
                runner.subscribe(index, plan);
                return std::string();
            }};
}

std::shared_ptr<const Script> Generator::script() {
    ++depth;
    Script script = makeScript();
    --depth;
    script.text = textOf(script);
    return std::make_shared<const Script>(std::move(script));
}

/// A nested script holds no further script, so every program ends.
Script Generator::makeScript() {
    Script script;
    if (depth == 1 && chance(25))
        script.onSubscribe = reaction(20);
    if (chance(85))
        script.onSubscribe.operations.push_back(request());
    if (depth > 1)
        return script;
    for (std::size_t values = below(4); values > 0; --values)
        script.onNext.push_back(reaction(20));
    if (chance(40))
        script.onComplete = reaction(0);
    return script;
}

Reaction Generator::reaction(unsigned percentOfThrows) {
    Reaction reaction;
    for (std::size_t operations = below(3); operations > 0; --operations)
        reaction.operations.push_back(chance(30) ? request() : operation());
    reaction.throws = chance(percentOfThrows);
    return reaction;
}

Operation PublisherGenerator::addPublisher() {
    return {"add a publisher", [](ProgramRunner& runner) {
                runner.addPublisher();
                return std::string();
            }};
}

Operation PublisherGenerator::operation() {
    const std::size_t choice = below(100);
    if (choice < 40)
        return offer();
    if (choice < 65)
        return request();
    if (choice < 80)
        return subscribe();
    if (choice < 85)
        return cancel();
    if (choice < 90)
        return release();
    return choice < 95 ? followCompletion() : addPublisher();
}

} // namespace test::model
