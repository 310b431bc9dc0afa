/// A schema without the type of its settings. `settings` points to an object of that type
/// everywhere.
#pragma once

#include <connector/Export.hpp>
#include <connector/configuration/Configuration.hpp>
#include <connector/configuration/typed/InvalidSettings.hpp>
#include <connector/configuration/typed/detail/Check.hpp>
#include <connector/configuration/typed/detail/OptionType.hpp>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace connector::configuration {

/// What a schema does about options under its prefix that it does not declare.
enum class UnknownKeys {
    Allowed, ///< nothing
    Refused, ///< each is a problem
};

namespace detail {

/// From settings to one of their members.
using Place = std::function<void*(void*)>;

struct DeclaredOption {
    std::string key; ///< whole
    std::string description;
    bool isRequired;
    std::shared_ptr<const OptionType> type;
    std::vector<Check> checks;
    Place place;
};

struct DeclaredRule {
    std::string key;
    std::function<std::string(const void* settings)> problem; ///< empty when nothing is wrong
};

class CONNECTOR_EXPORT SchemaCore {
public:
    explicit SchemaCore(const std::string& newPrefix);
    SchemaCore(const SchemaCore&);
    SchemaCore& operator=(const SchemaCore&);
    ~SchemaCore();

    /// @param option  its key is still the bare name
    /// @throws std::invalid_argument "Option declared twice: NAME",
    ///         "A declared option needs a name."
    void add(DeclaredOption&& option);
    void addRule(std::function<std::string(const void*)>&& problem);

    /// Takes over what another schema declares.
    /// @param place  from these settings to those of the other schema
    /// @throws std::invalid_argument as above; "The schema of a group must not have a prefix:
    ///         PREFIX"
    void addGroup(const std::string& name, const SchemaCore& inner, const Place& place);

    /// Reads all options into settings that have the defaults. @return the problems
    std::vector<OptionProblem> read(Configuration& configuration, UnknownKeys unknownKeys,
                                    void* settings) const;

    /// Converts and checks one value. @return the problem; empty when there is none
    std::string readOne(const DeclaredOption& option, const OptionValue& value,
                        void* settings) const;

    /// @return whether the two are known to be the same, option for option
    bool same(const void* left, const void* right) const;

    // The documents; the settings have the defaults.
    std::string helpText(void* settings) const;
    std::string sampleProperties(void* settings) const;
    std::string jsonSchema(void* settings) const;

    const std::string& prefix() const { return name; }
    const std::vector<DeclaredOption>& options() const { return declared; }

private:
    class Reading;

    std::string keyOf(const std::string& option) const;

    std::string name; // without a dot at the end
    std::vector<DeclaredOption> declared;
    std::vector<std::string> keys; // of the declared options
    std::vector<DeclaredRule> rules;
};

/// @return the default of an option as a file has it; nothing when no text can carry it
std::optional<std::string> defaultText(const DeclaredOption& option, void* settings);

/// @return the default as help texts show it; empty when there is none, ****** for a secret
CONNECTOR_EXPORT std::string helpDefault(const DeclaredOption& option, void* settings);

} // namespace detail

} // namespace connector::configuration
