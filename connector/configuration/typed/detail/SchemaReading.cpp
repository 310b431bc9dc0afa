/// Reads settings: all declared options at one moment of the configuration.
#include <connector/configuration/typed/detail/SchemaCore.hpp>

#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/configuration/typed/OptionReading.hpp>
#include <connector/configuration/typed/detail/EditDistance.hpp>
#include <connector/configuration/typed/detail/Texts.hpp>

#include <algorithm>
#include <set>
#include <utility>

namespace connector::configuration::detail {

namespace {

constexpr std::size_t farthestSuggestion = 2;

/// One option after the other: for configurations that cannot read several at one moment.
std::vector<Option> optionsOf(Configuration& configuration, const std::vector<std::string>& keys) {
    std::vector<Option> options;
    for (const std::string& key : keys) {
        if (std::optional<Option> option = findOption(configuration, key))
            options.push_back(*std::move(option));
    }
    return options;
}

std::vector<Option> optionsBelow(Configuration& configuration, const std::string& prefix) {
    const std::set<std::string> all = configuration.keys().get();
    std::vector<std::string> keys;
    for (auto key = all.lower_bound(prefix);
         key != all.end() && key->compare(0, prefix.size(), prefix) == 0; ++key)
        keys.push_back(*key);
    return optionsOf(configuration, keys);
}

} // namespace

/// One reading of a schema.
class SchemaCore::Reading {
public:
    Reading(const SchemaCore& newSchema, void* newSettings)
        : schema(newSchema), settings(newSettings) {}

    /// Takes the options of a list that has them in the order of declaration, each at most once.
    void takeDeclared(std::vector<Option>&& options) {
        auto next = options.begin();
        for (const DeclaredOption& declared : schema.declared) {
            const bool isThere = next != options.end() && next->key == declared.key;
            take(declared, isThere ? &*next++ : nullptr);
        }
    }

    /// Takes the declared options out of a list sorted by key, and reports the others.
    void takeAll(std::vector<Option>&& options) {
        std::vector<bool> isKnown(options.size());
        for (const DeclaredOption& declared : schema.declared) {
            const auto option = std::lower_bound(
                options.begin(), options.end(), declared.key,
                [](const Option& left, const std::string& key) { return left.key < key; });
            const bool isThere = option != options.end() && option->key == declared.key;
            take(declared, isThere ? &*option : nullptr);
            if (isThere)
                isKnown[static_cast<std::size_t>(option - options.begin())] = true;
        }
        for (std::size_t i = 0; i < options.size(); ++i) {
            if (!isKnown[i])
                unknown.push_back({options[i].key, options[i].source, suggest(options[i].key)});
        }
    }

    std::vector<OptionProblem> finish() {
        if (problems.empty()) {
            for (const DeclaredRule& rule : schema.rules) {
                if (std::string problem = rule.problem(settings); !problem.empty())
                    problems.push_back({rule.key, "", std::move(problem)});
            }
        }
        std::move(unknown.begin(), unknown.end(), std::back_inserter(problems));
        return std::move(problems);
    }

private:
    void take(const DeclaredOption& declared, const Option* option) {
        if (option == nullptr) {
            if (declared.isRequired)
                problems.push_back({declared.key, "", texts::required});
            return;
        }
        std::string problem = schema.readOne(declared, option->value, settings);
        if (!problem.empty())
            problems.push_back({declared.key, option->source, std::move(problem)});
    }

    std::string suggest(const std::string& key) const {
        const DeclaredOption* nearest = nullptr;
        std::size_t distance = farthestSuggestion + 1;
        for (const DeclaredOption& declared : schema.declared) {
            const std::size_t here = editDistance(key, declared.key, distance);
            if (here < distance) {
                distance = here;
                nearest = &declared;
            }
        }
        return nearest == nullptr
                   ? texts::unknown
                   : std::string(texts::unknown) + texts::suggestion + nearest->key + '?';
    }

    const SchemaCore& schema;
    void* const settings;
    std::vector<OptionProblem> problems;
    std::vector<OptionProblem> unknown;
};

std::vector<OptionProblem> SchemaCore::read(Configuration& configuration, UnknownKeys unknownKeys,
                                            void* settings) const {
    auto* const atOneMoment = dynamic_cast<ConfigurationImpl*>(&configuration);
    Reading reading(*this, settings);
    if (unknownKeys == UnknownKeys::Refused) {
        const std::string below = name.empty() ? name : name + '.';
        reading.takeAll(atOneMoment != nullptr ? atOneMoment->optionsBelow(below)
                                               : optionsBelow(configuration, below));
    } else {
        reading.takeDeclared(atOneMoment != nullptr ? atOneMoment->optionsOf(keys)
                                                    : optionsOf(configuration, keys));
    }
    return reading.finish();
}

} // namespace connector::configuration::detail
