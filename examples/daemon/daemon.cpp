/// A small server that greets the guests whose names it reads from standard input, one per line.
/// Its options are checked, and can be changed while it runs: set KEY TEXT, reset KEY. quit ends
/// it.
#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/configuration/typed/CommandLine.hpp>
#include <connector/configuration/typed/LiveOption.hpp>
#include <connector/configuration/typed/LiveSettings.hpp>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <sstream>

using namespace connector::configuration;

enum class Level { Error, Info, Debug };

template <>
struct connector::configuration::OptionNames<Level> {
    static constexpr std::pair<std::string_view, Level> names[] = {
        {"error", Level::Error}, {"info", Level::Info}, {"debug", Level::Debug}};
};

struct Greeter {
    std::string greeting = "Hello";
    std::vector<std::string> guests;
    ByteSize longest{64};
    std::chrono::seconds patience{30};
    std::string password;
};

OptionSchema<Greeter> greeterSchema() {
    return OptionSchema<Greeter>("greeter")
        .option("greeting", &Greeter::greeting, "what guests are told", notEmpty())
        .required("guests", &Greeter::guests, "who is welcome", notEmpty())
        .option("longest", &Greeter::longest, "size of a request",
                inRange(ByteSize{8}, ByteSize{4096}))
        .option("patience", &Greeter::patience, "how long to wait for a guest")
        .option("password", &Greeter::password, "of the administrator")
        .rule([](const Greeter& greeter) {
            return greeter.greeting.size() < greeter.longest.bytes
                       ? std::string()
                       : std::string("greeting must be shorter than longest");
        });
}

/// Answers requests for as long as there are any.
class Server {
public:
    explicit Server(const std::shared_ptr<ConfigurationImpl>& newConfiguration)
        : configuration(newConfiguration), settings(newConfiguration, greeterSchema()),
          level(newConfiguration, "log.level", Level::Info) {}

    void run() {
        const OptionWatch watch = settings.onChange([this](const Greeter& greeter) {
            log(Level::Info, std::to_string(greeter.guests.size()) + " guests are welcome");
        });
        for (std::string line; std::getline(std::cin, line) && line != "quit";)
            answer(line);
    }

private:
    void log(Level severity, const std::string& text) const {
        if (severity <= level.get()) // one atomic load
            std::cerr << text << '\n';
    }

    void answer(const std::string& line) {
        std::istringstream words(line);
        std::string command, key, text;
        words >> command >> key;
        std::getline(words >> std::ws, text);
        if (command == "set")
            configuration->set(key, text).get();
        else if (command == "reset")
            configuration->reset(key).get();
        else
            return greet(line);
        for (const OptionProblem& problem : settings.problems())
            std::cout << "refused: " << describe(problem) << std::endl;
        if (const auto problem = level.problem())
            std::cout << "refused: " << problem->what() << std::endl;
    }

    void greet(const std::string& name) const {
        const auto now = settings.snapshot(); // stays as it is during this request
        log(Level::Debug, "request of " + std::to_string(name.size()) + " bytes");
        const bool isWelcome =
            std::find(now->guests.begin(), now->guests.end(), name) != now->guests.end();
        std::cout << (isWelcome ? now->greeting + ", " + name : "Who are you?") << std::endl;
    }

    const std::shared_ptr<ConfigurationImpl> configuration;
    const LiveSettings<Greeter> settings;
    const LiveOption<Level> level;
};

int main(int count, char** arguments) try {
    const auto configuration = std::make_shared<ConfigurationImpl>();
    CLI::App application("Greets guests.");
    std::vector<std::string> files;
    application.add_option("--file", files, "property files; the last one goes first");
    bool sample = false;
    application.add_flag("--sample", sample, "write a property file with the defaults");
    addOptions(application, greeterSchema(), configuration);
    CLI11_PARSE(application, count, arguments);
    if (sample)
        return std::cout << greeterSchema().sampleProperties(), 0;
    for (const std::string& file : files)
        configuration
            ->addPropertyFileSource(file, "", 100, true, std::filesystem::path(file).u16string())
            .get();
    greeterSchema().read(*configuration, UnknownKeys::Refused); // mistyped keys are refused, too
    Server(configuration).run();
} catch (const std::exception& failure) {
    std::cerr << failure.what() << '\n';
    return 2;
}
