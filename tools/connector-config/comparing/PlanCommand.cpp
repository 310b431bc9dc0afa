#include "comparing/PlanCommand.hpp"

#include "commands/Sources.hpp"
#include "comparing/DifferenceText.hpp"
#include "comparing/FileRereading.hpp"

#include <connector/configuration/json/OptionValueJson.hpp>
#include <connector/service/text/Json.hpp>

#include <utility>

namespace connector_config {

using connector::configuration::ConfigurationImpl;
using connector::service::makeObject;
using Poco::JSON::Array;

namespace {

namespace planning = connector::configuration::planning;

/// Makes the change for the library.
struct ChangeMaker {
    const NamedFiles& files;
    const Arguments& arguments;
    const Snapshot& snapshot;
    std::vector<std::string>& failures;

    planning::Change operator()(const SetLine& line) const {
        warnOfUnknownType(line.assignment);
        return planning::SetOption{line.assignment.key, line.assignment.value, line.source};
    }
    planning::Change operator()(const AddLine& line) const {
        const FileArgument& file = line.file;
        return planning::AddSource{file.name, file.group, file.order, true, openFile(file)};
    }
    planning::Change operator()(const RemoveLine& line) const {
        return planning::RemoveSource{line.name};
    }
    planning::Change operator()(const ReloadFiles&) const {
        RereadFiles read = arguments.snapshot ? reread(namedFiles(), snapshot) : reread(files);
        failures = std::move(read.failures);
        return std::move(read.tables);
    }

private:
    std::vector<FileArgument> namedFiles() const {
        std::vector<FileArgument> named;
        for (const SourceArgument& source : arguments.sources)
            named.push_back(std::get<FileArgument>(source));
        return named;
    }
};

/// The changes of a plan as differences.
struct Effects {
    Differences differences;
    std::vector<bool> announced; ///< of each difference, whether watchers would be notified
};

/// @param snapshot  tells which values are masked
Effects effectsOf(const planning::Plan& plan, const Snapshot& snapshot) {
    const auto isUnknown = [&snapshot](const std::optional<Option>& option) {
        return option && isMasked(snapshot, option->source, option->key) &&
               option->value == OptionValue(std::string(Secrets::mask));
    };
    Effects effects;
    for (const planning::OptionChange& change : plan.changes) {
        addDifference(effects.differences, change.before, change.after,
                      isUnknown(change.before) || isUnknown(change.after), true);
        effects.announced.resize(effects.differences.differences.size(), change.isAnnounced);
    }
    return effects;
}

std::string noteOn(const Difference& difference, bool isAnnounced) {
    if (difference.kind == DifferenceKind::Removed)
        return "gone, and watchers are not notified";
    return isAnnounced ? "" : "watchers are not notified";
}

std::string asText(const Effects& effects, const planning::Plan& plan, const Secrets& secrets,
                   const Terminal& terminal) {
    DifferenceTable table(secrets);
    const std::vector<Difference>& differences = effects.differences.differences;
    for (std::size_t i = 0; i < differences.size(); ++i)
        table.add(differences[i], noteOn(differences[i], effects.announced[i]));
    for (const planning::HiddenWrite& hidden : plan.hidden)
        table.add("", hidden.option, "stays hidden behind " + hidden.behind);
    const bool hasNoEffect = differences.empty() && effects.differences.masked.empty();
    return table.text(terminal) + (hasNoEffect ? "nothing would change\n" : "");
}

Array::Ptr changesAsJson(const Effects& effects, const Secrets& secrets) {
    Array::Ptr changes = new Array;
    const std::vector<Difference>& differences = effects.differences.differences;
    for (std::size_t i = 0; i < differences.size(); ++i) {
        Poco::JSON::Object::Ptr change = toJson(differences[i], secrets);
        change->set("announced", static_cast<bool>(effects.announced[i]));
        changes->add(change);
    }
    return changes;
}

Array::Ptr hiddenAsJson(const planning::Plan& plan, const Secrets& secrets) {
    Array::Ptr array = new Array;
    for (const planning::HiddenWrite& hidden : plan.hidden) {
        Poco::JSON::Object::Ptr object = connector::service::toJson(secrets.masked(hidden.option));
        object->set("behind", hidden.behind);
        array->add(object);
    }
    return array;
}

std::string asJson(const Effects& effects, const planning::Plan& plan, const Secrets& secrets) {
    Poco::JSON::Object::Ptr document = makeObject();
    document->set("changes", changesAsJson(effects, secrets));
    document->set("hidden", hiddenAsJson(plan, secrets));
    document->set("gone", toJson(plan.goneKeys()));
    document->set("masked", toJson(effects.differences.masked));
    return connector::service::jsonText(document) + '\n';
}

} // namespace

PlanResult plan(ConfigurationImpl& configuration, const Arguments& arguments,
                const NamedFiles& files, const Snapshot& snapshot, const Terminal& terminal) {
    PlanResult result;
    const Secrets secrets(arguments.secrets);
    const planning::Plan plan = configuration.plan(std::visit(
        ChangeMaker{files, arguments, snapshot, result.failures}, *arguments.plannedChange));
    const Effects effects = effectsOf(plan, snapshot);
    reportMasked(effects.differences.masked);
    result.output =
        arguments.json ? asJson(effects, plan, secrets) : asText(effects, plan, secrets, terminal);
    return result;
}

} // namespace connector_config
