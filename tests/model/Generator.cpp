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
    return {text + nameOf(index), [index, action = std::move(action)](Player& player) {
                player.withStream(index, action);
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

/// In a script, mostly the subscriber's own.
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

Operation Generator::letGo() {
    return streamOperation("let go", stream(), [](Stream& stream) { stream.letGo(); });
}

Operation Generator::followCompletion() {
    const std::size_t index = stream();
    return {"follow completion" + nameOf(index), [index](Player& player) {
                player.followCompletion(index);
                return std::string();
            }};
}

Operation Generator::subscribe() {
    const std::size_t index = stream();
    const auto plan = script();
    return {"subscribe" + nameOf(index) + ' ' + plan->text, [index, plan](Player& player) {
                player.subscribe(index, plan);
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

/// A script in a script does not hold another one, so every program comes to an end.
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
    return {"add a publisher", [](Player& player) {
                player.addPublisher();
                return std::string();
            }};
}

Operation PublisherGenerator::operation() {
    const std::size_t dice = below(100);
    if (dice < 40)
        return offer();
    if (dice < 65)
        return request();
    if (dice < 80)
        return subscribe();
    if (dice < 85)
        return cancel();
    if (dice < 90)
        return letGo();
    return dice < 95 ? followCompletion() : addPublisher();
}

} // namespace test::model
