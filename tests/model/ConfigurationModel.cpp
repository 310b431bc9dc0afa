#include "ConfigurationModel.hpp"

#include <limits>
#include <stdexcept>
#include <utility>

namespace test::model {

namespace {

bool beginsWith(const std::string& key, const std::string& group) {
    return key.size() >= group.size() && key.substr(0, group.size()) == group;
}

std::string withoutGroup(const std::string& key, const std::string& group) {
    return key.substr(group.size());
}

} // namespace

ConfigurationModel::ConfigurationModel(Journal& newJournal, bool newLogs,
                                       const std::string& typeOfOwn)
    : journal(newJournal), logs(newLogs) {
    for (std::size_t i = 0; i < ownSources; ++i)
        own.push_back(std::make_shared<SourceModel>(typeOfOwn, Entries{}, journal,
                                                    "source " + std::to_string(i)));
    addInMemorySource("default", "", std::numeric_limits<int>::max(), false, {});
    addInMemorySource("override", "", 0, false, {});
}

ConfigurationModel::~ConfigurationModel() {
    life.reset();
    for (const Record& record : sources)
        record.source->setWatcher(nullptr);
    for (OptionStream& stream : streams)
        stream.publisher.reset();
}

std::string ConfigurationModel::get(const std::string& key) {
    if (!doHas(key))
        return failed(std::runtime_error("No option with the specified key was found: " + key));
    return answered(doGet(key));
}

std::string ConfigurationModel::getOption(const std::string& key) {
    if (!doHas(key))
        return failed(std::runtime_error("No option with the specified key was found: " + key));
    const Record* const record = supplier(key);
    if (record == nullptr)
        throw std::runtime_error("No option for key: " + key);
    log("get option: " + key + " from " + record->name);
    return answered(key, record->name, record->source->get(withoutGroup(key, record->group)));
}

std::string ConfigurationModel::has(const std::string& key) {
    return answered(doHas(key));
}

std::string ConfigurationModel::keys() {
    std::set<std::string> keys;
    for (const Record& record : sources) {
        for (const std::string& key : record.source->keys())
            keys.insert(record.group + key);
    }
    return answered(keys);
}

std::string ConfigurationModel::set(const std::string& key, int value) {
    log("set: " + key);
    for (const Record& record : sources) {
        if (!record.readOnly && beginsWith(key, record.group))
            return write(record, key, value);
    }
    return failed(std::runtime_error("No writable configuration source for key: " + key));
}

std::string ConfigurationModel::set(const std::string& key, int value, const std::string& source) {
    log("set: " + key + ", " + source);
    for (const Record& record : sources) {
        if (record.name == source && !record.readOnly && beginsWith(key, record.group))
            return write(record, key, value);
    }
    return failed(std::runtime_error("Source not found or not writable: " + key + ", " + source));
}

/// Keeps the source alive, because a subscriber may remove it.
std::string ConfigurationModel::write(const Record& record, const std::string& key, int value) {
    log("set: " + key + "@" + record.name);
    const std::shared_ptr<SourceModel> source = record.source;
    return answered(source->set(withoutGroup(key, record.group), value));
}

std::string ConfigurationModel::addInMemorySource(const std::string& name, const std::string& group,
                                                  int order, bool readOnly,
                                                  const Entries& entries) {
    return addSource(
        name, group, order, readOnly,
        std::make_shared<SourceModel>("N9connector13configuration14InMemorySourceE", entries));
}

std::string ConfigurationModel::addOwnSource(const std::string& name, const std::string& group,
                                             int order, bool readOnly, std::size_t index) {
    return addSource(name, group, order, readOnly, own[index]);
}

std::string ConfigurationModel::addSource(const std::string& name, const std::string& group,
                                          int order, bool readOnly,
                                          const std::shared_ptr<SourceModel>& source) {
    log("addSource: " + name + ", " + group + ", " + std::to_string(order) + ", " +
        (readOnly ? "1" : "0") + ", " + source->typeName);
    if (find(name) != nullptr)
        return failed(
            std::invalid_argument("Source with the requested name already exists: " + name));
    auto place = sources.begin();
    while (place != sources.end() && place->order < order)
        ++place;
    const bool needsDot = !group.empty() && group[group.size() - 1] != '.';
    const std::string prefix = needsDot ? group + "." : group;
    sources.insert(place, Record{name, prefix, order, readOnly, source});
    for (const std::string& key : source->keys())
        updatePublishers(prefix + key);
    source->setWatcher([this, prefix](const std::string& key) { updatePublishers(prefix + key); });
    return answered(true);
}

std::string ConfigurationModel::removeSource(const std::string& name) {
    log("removeSource: " + name);
    const Record* const record = find(name);
    if (record == nullptr)
        return answered(false);
    const std::set<std::string> keys = record->source->keys();
    sources.erase(sources.begin() + (record - sources.data()));
    for (const std::string& key : keys)
        updatePublishers(key);
    return answered(true);
}

std::unique_ptr<Stream> ConfigurationModel::watchOption(const std::string& key) {
    log("watchOption: " + key);
    const std::uint64_t id = nextStreamId++;
    const auto publisher = std::make_shared<PublisherModel>(
        [this, id, alive = std::weak_ptr<int>(life)] {
            if (alive.lock())
                removeStream(id);
        },
        1);
    streams.push_back({id, key, publisher});
    if (doHas(key))
        publisher->onNext(doGet(key));
    return std::make_unique<ModelStream>(publisher);
}

/// Erases the entry before its publisher is destroyed, because the destructor calls a subscriber.
void ConfigurationModel::removeStream(std::uint64_t id) {
    for (auto stream = streams.begin(); stream != streams.end(); ++stream) {
        if (stream->id != id)
            continue;
        const OptionStream removed = std::move(*stream);
        streams.erase(stream);
        return;
    }
}

void ConfigurationModel::updatePublishers(const std::string& key) {
    log("updatePublishers: " + key);
    if (!doHas(key))
        return;
    const int value = doGet(key);
    const std::vector<OptionStream> copy = streams;
    for (const OptionStream& stream : copy) {
        if (stream.key != key)
            continue;
        try {
            log("notifying watcher: " + key);
            stream.publisher->onNext(value);
        } catch (...) {
            journal.note("standard error: Error in configuration value subscriber: " + key + "\n");
        }
    }
}

int ConfigurationModel::doGet(const std::string& key) {
    const Record* const record = supplier(key);
    if (record == nullptr)
        throw std::runtime_error("No option value for key: " + key);
    log("get: " + key + " from " + record->name);
    return record->source->get(withoutGroup(key, record->group));
}

const ConfigurationModel::Record* ConfigurationModel::supplier(const std::string& key) const {
    for (const Record& record : sources) {
        if (beginsWith(key, record.group) && record.source->has(withoutGroup(key, record.group)))
            return &record;
    }
    return nullptr;
}

const ConfigurationModel::Record* ConfigurationModel::find(const std::string& name) const {
    for (const Record& record : sources) {
        if (record.name == name)
            return &record;
    }
    return nullptr;
}

void ConfigurationModel::log(const std::string& line) {
    if (logs)
        journal.note("log: " + line);
}

} // namespace test::model
