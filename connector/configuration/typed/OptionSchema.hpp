/// Options that are declared once: read, checked and documented from there.
///
///     struct Net {
///         int port = 8080;
///         std::vector<std::string> peers;
///     };
///
///     const auto schema = OptionSchema<Net>("net")
///         .option("port", &Net::port, "TCP port to listen on", inRange(1, 65535))
///         .required("peers", &Net::peers, "addresses of the other nodes");
///     const Net net = schema.read(*configuration);
#pragma once

#include <connector/configuration/Configuration.hpp>
#include <connector/configuration/typed/InvalidSettings.hpp>
#include <connector/configuration/typed/OptionChecks.hpp>
#include <connector/configuration/typed/detail/SchemaCore.hpp>

#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace connector::configuration {

/// Options as members of a struct. Several threads may use a finished schema at once.
/// @tparam Settings  default-constructed objects have the defaults
template <typename Settings>
class OptionSchema {
public:
    /// @param prefix  of all keys; a "." is appended if it has none. Empty: no prefix.
    explicit OptionSchema(const std::string& prefix = {}) : schema(prefix) {}

    /// Declares an option whose default is the member's own initial value.
    /// @param checks  inRange, oneOf, notEmpty, or a callable that takes the value and returns the
    ///                problem, or an empty string. They receive the value that an option has, not
    ///                its default; if several fail, the first one is reported.
    /// @throws std::invalid_argument "Option declared twice: NAME",
    ///         "A declared option needs a name."
    template <typename Member, typename Owner, typename... Checks>
    OptionSchema& option(const std::string& name, Member Owner::*member,
                         const std::string& description, const Checks&... checks) {
        return declare<Member>(name, place(member), description, false, checks...);
    }

    /// Declares a required option.
    template <typename Member, typename Owner, typename... Checks>
    OptionSchema& required(const std::string& name, Member Owner::*member,
                           const std::string& description, const Checks&... checks) {
        return declare<Member>(name, place(member), description, true, checks...);
    }

    /// Takes over what another schema declares, its rules included, with the name in front.
    /// @param inner  without a prefix
    /// @throws std::invalid_argument as above;
    ///         "The schema of a group must not have a prefix: PREFIX"
    template <typename Member, typename Owner>
    OptionSchema& group(const std::string& name, Member Owner::*member,
                        const OptionSchema<Member>& inner) {
        schema.addGroup(name, inner.core(), place(member));
        return *this;
    }

    /// Adds a constraint across several members. Rules run when all options are good.
    /// @param rule  takes the settings and returns the problem, or an empty string
    OptionSchema& rule(std::function<std::string(const Settings&)> rule) {
        schema.addRule([rule = std::move(rule)](const void* settings) {
            return rule(*static_cast<const Settings*>(settings));
        });
        return *this;
    }

    /// Reads all declared options. From a ConfigurationImpl they are read at one moment: no set
    /// comes in between. Any other Configuration is queried for one option after the other. Takes
    /// the configuration's lock; checks and rules run without it.
    /// @throws InvalidSettings with all problems at once
    /// @throws what a source, a check or a rule throws
    Settings read(Configuration& configuration,
                  UnknownKeys unknownKeys = UnknownKeys::Allowed) const {
        Settings settings{};
        std::vector<OptionProblem> problems = readInto(settings, configuration, unknownKeys);
        if (!problems.empty())
            throw InvalidSettings(std::move(problems));
        return settings;
    }

    /// @return the problems that read would throw, in the order of declaration, then those of
    ///         rules, then unknown keys, sorted
    /// @throws what a source, a check or a rule throws
    std::vector<OptionProblem> check(Configuration& configuration,
                                     UnknownKeys unknownKeys = UnknownKeys::Allowed) const {
        Settings settings{};
        return readInto(settings, configuration, unknownKeys);
    }

    /// @return one line per option: key, type, default, description; aligned
    std::string helpText() const {
        Settings settings{};
        return schema.helpText(&settings);
    }

    /// @return a property file with descriptions and defaults that reads back to the same settings.
    ///         Required options, and defaults that cannot be written as text, are commented out.
    std::string sampleProperties() const {
        Settings settings{};
        return schema.sampleProperties(&settings);
    }

    /// @return a JSON Schema, draft 2020-12, of an object with the full keys as names
    std::string jsonSchema() const {
        Settings settings{};
        return schema.jsonSchema(&settings);
    }

    /// For the library's own use: the schema without the type of its settings.
    const detail::SchemaCore& core() const { return schema; }

private:
    template <typename Member, typename Owner>
    static detail::Place place(Member Owner::*member) {
        static_assert(std::is_base_of_v<Owner, Settings>, "a member of the settings is needed");
        return [member](void* settings) -> void* {
            return &(static_cast<Settings*>(settings)->*member);
        };
    }

    template <typename Member, typename... Checks>
    OptionSchema& declare(const std::string& name, detail::Place&& place,
                          const std::string& description, bool isRequired,
                          const Checks&... checks) {
        schema.add({name,
                    description,
                    isRequired,
                    std::make_shared<const detail::OptionTypeOf<Member>>(),
                    {detail::makeCheck<Member>(checks)...},
                    std::move(place)});
        return *this;
    }

    std::vector<OptionProblem> readInto(Settings& settings, Configuration& configuration,
                                        UnknownKeys unknownKeys) const {
        return schema.read(configuration, unknownKeys, &settings);
    }

    detail::SchemaCore schema;
};

} // namespace connector::configuration
