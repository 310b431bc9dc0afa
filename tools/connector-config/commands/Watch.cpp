#include "commands/Commands.hpp"

#include "arguments/WatchLine.hpp"
#include "commands/Sources.hpp"
#include "display/Output.hpp"
#include "values/ValueText.hpp"
#include "values/WrongArguments.hpp"

#include <connector/service/text/Escaping.hpp>
#include <connector/service/text/Json.hpp>
#include <connector/service/text/Secrets.hpp>

#include <connector/reactive_streams/Subscriber.hpp>

#include <exception>
#include <iostream>

namespace connector_config {

using connector::service::escaped;
using connector::service::jsonText;
using connector::service::Secrets;
using connector::service::toJson;

namespace {

using connector::configuration::Option;
using connector::reactive_streams::Subscription;

std::string formatLine(const Option& option) {
    return escaped(option.key) + " = " + displayText(option.value) + "  (" +
           escaped(option.source) + ")\n";
}

/// Writes the values of one option. Requests the next one when one has been written.
class Printer : public connector::reactive_streams::Subscriber<OptionValue> {
public:
    Printer(ConfigurationImpl& newConfiguration, const Secrets& newSecrets, std::string newKey,
            bool newJson)
        : configuration(newConfiguration), secrets(newSecrets), key(std::move(newKey)),
          json(newJson) {}

    void onSubscribe(std::weak_ptr<Subscription> newSubscription) override {
        subscription = std::move(newSubscription);
        requestOne();
    }

    // The library must not see a failure to write; watch() rethrows it.
    void onNext(const OptionValue& value) override {
        try {
            print(value);
            requestOne();
        } catch (...) {
            failure = std::current_exception();
        }
    }

    void onComplete() override {}
    void onError(std::exception_ptr) override {}

    void rethrowFailure() const {
        if (failure)
            std::rethrow_exception(failure);
    }

private:
    void print(const OptionValue& value) const {
        const Option option =
            secrets.masked(Option{key, configuration.getOption(key).get().source, value});
        writeOutput(json ? jsonText(toJson(option)) + '\n' : formatLine(option));
    }

    void requestOne() const {
        if (const auto alive = subscription.lock())
            alive->request(1);
    }

    ConfigurationImpl& configuration;
    const Secrets& secrets;
    const std::string key;
    const bool json;
    std::weak_ptr<Subscription> subscription;
    std::exception_ptr failure;
};

/// Executes a line. Each overload returns whether to read on.
struct LineExecutor {
    ConfigurationImpl& configuration;

    bool operator()(const SetLine& line) const {
        const auto& [key, value] = line.assignment;
        if (line.source)
            configuration.set(key, value, *line.source).get();
        else
            configuration.set(key, value).get();
        return true;
    }
    bool operator()(const AddLine& line) const {
        addFile(configuration, line.file);
        return true;
    }
    bool operator()(const RemoveLine& line) const {
        if (!configuration.removeSource(line.name).get())
            throw WrongArguments("No source with that name: " + line.name);
        return true;
    }
    bool operator()(const QuitLine&) const { return false; }
};

/// @return whether to read on
bool executeLine(ConfigurationImpl& configuration, const std::string& line,
                 const Secrets& secrets) {
    try {
        return std::visit(LineExecutor{configuration}, parseWatchLine(line, secrets));
    } catch (const std::exception& error) {
        printError(error.what());
        return true;
    }
}

} // namespace

void watch(ConfigurationImpl& configuration, const Arguments& arguments) {
    const Secrets secrets(arguments.secrets);
    std::vector<std::shared_ptr<Printer>> printers;
    const auto rethrowFailures = [&printers] {
        for (const auto& printer : printers)
            printer->rethrowFailure();
    };

    for (const std::string& key : arguments.keys) {
        printers.push_back(std::make_shared<Printer>(configuration, secrets, key, arguments.json));
        configuration.watchOption(key)->subscribe(printers.back());
    }
    rethrowFailures();
    for (std::string line; std::getline(std::cin, line);) {
        if (!executeLine(configuration, line, secrets))
            return;
        rethrowFailures();
    }
}

} // namespace connector_config
