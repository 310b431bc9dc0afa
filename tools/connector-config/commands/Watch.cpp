#include "commands/Commands.hpp"

#include "arguments/WatchLine.hpp"
#include "commands/ChangeText.hpp"
#include "commands/FileReloading.hpp"
#include "commands/PromptLines.hpp"
#include "commands/Sources.hpp"
#include "display/Output.hpp"
#include "values/WrongArguments.hpp"

#include <connector/service/text/Escaping.hpp>
#include <connector/service/text/Secrets.hpp>

#include <connector/reactive_streams/Subscriber.hpp>

#include <exception>
#include <set>

namespace connector_config {

using connector::service::Secrets;
using connector::service::shortened;

namespace {

using connector::configuration::Option;
using connector::reactive_streams::Subscription;

constexpr std::size_t maxComplaint = 200; // in bytes; a line can be much longer

/// What the printers share. Must outlive the reloads, which call the printers.
struct PrinterContext {
    ConfigurationImpl& configuration;
    const Secrets secrets;
    const bool json;
    PromptLines& lines; // end when standard output cannot be written
};

/// Writes the values of one option. Requests the next one when one has been written, so that
/// onNext is called by one thread at a time.
class Printer : public connector::reactive_streams::Subscriber<OptionValue> {
public:
    Printer(const PrinterContext& newContext, std::string newKey)
        : context(newContext), key(std::move(newKey)) {}

    void onSubscribe(std::weak_ptr<Subscription> newSubscription) override {
        subscription = std::move(newSubscription);
        requestOne();
    }

    // The library must not see a failure to write; the prompt throws it.
    void onNext(const OptionValue&) override {
        try {
            print();
            requestOne();
        } catch (...) {
            context.lines.fail(std::current_exception());
        }
    }

    void onComplete() override {}
    void onError(std::exception_ptr) override {}

private:
    /// Prints the value and its source as of one moment. Another thread may have changed the option
    /// again, or removed it, since the library called onNext.
    void print() const {
        for (const Option& option : context.configuration.optionsOf({key}))
            writeOutput(changeText(context.secrets.masked(option), context.json));
    }

    void requestOne() const {
        if (const auto alive = subscription.lock())
            alive->request(1);
    }

    const PrinterContext& context;
    const std::string key;
    std::weak_ptr<Subscription> subscription;
};

/// Executes a line. Each overload returns whether to read on.
struct LineExecutor {
    ConfigurationImpl& configuration;
    FileReloading& reloading;

    bool operator()(const SetLine& line) const {
        warnOfUnknownType(line.assignment);
        const std::string& key = line.assignment.key;
        const OptionValue& value = line.assignment.value;
        if (line.source)
            configuration.set(key, value, *line.source).get();
        else
            configuration.set(key, value).get();
        return true;
    }
    bool operator()(const AddLine& line) const {
        const std::shared_ptr<NamedFile> file = openFile(line.file);
        addFile(configuration, file);
        try {
            reloading.add(file);
        } catch (...) {
            configuration.removeSource(line.file.name).get();
            throw;
        }
        return true;
    }
    bool operator()(const RemoveLine& line) const {
        if (!configuration.removeSource(line.name).get())
            throw WrongArguments("No source with that name: " + line.name);
        reloading.remove(line.name);
        return true;
    }
    bool operator()(const QuitLine&) const { return false; }
};

/// @return whether to read on
bool executeLine(const LineExecutor& executor, const std::string& line, const Secrets& secrets) {
    try {
        if (line.size() > PromptLines::maxLength)
            throw WrongArguments("A line is at most 1 MiB long");
        return std::visit(executor, parseWatchLine(line, secrets));
    } catch (const std::exception& error) {
        printError(shortened(error.what(), maxComplaint));
        return true;
    }
}

void watchKeys(const PrinterContext& context, const std::vector<std::string>& keys) {
    std::set<std::string> missing;
    for (const std::string& key : keys) {
        if (!context.configuration.has(key).get() && missing.insert(key).second)
            printError("No value yet: " + key);
        context.configuration.watchOption(key)->subscribe(std::make_shared<Printer>(context, key));
    }
}

} // namespace

void watch(ConfigurationImpl& configuration, const Arguments& arguments, const NamedFiles& files) {
    PromptLines lines;
    const PrinterContext context{configuration, Secrets(arguments.secrets), arguments.json, lines};
    FileReloading reloading(files, arguments.followsFiles);

    watchKeys(context, arguments.keys);
    const LineExecutor executor{configuration, reloading};
    while (const std::optional<std::string> line = lines.next()) {
        if (!executeLine(executor, *line, context.secrets))
            return;
    }
}

} // namespace connector_config
