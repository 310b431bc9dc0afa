#include "LibraryConfiguration.hpp"

#include "LibraryStream.hpp"

#include <foundation/log/basic_diagnostic_logger.hpp>

#include <boost/variant/get.hpp>

#include <exception>
#include <iostream>
#include <unordered_map>
#include <utility>

namespace test::model {

using connector::Future;
using connector::configuration::ConfigurationImpl;
using connector::configuration::Option;
using connector::configuration::OptionValue;

namespace {

template <typename T>
std::string textOf(const T& result) {
    return answered(result);
}

std::string textOf(const OptionValue& value) {
    return answered(numberIn(value));
}

std::string textOf(const Option& option) {
    return answered(option.key, option.source, numberIn(option.value));
}

/// Every future is resolved when its call returns, so this never waits.
template <typename T>
std::string outcome(Future<T> future) {
    try {
        return textOf(future.get());
    } catch (const std::exception& exception) {
        return failed(exception);
    }
}

} // namespace

OwnSource::OwnSource(Journal& journal, const std::string& name)
    : table(typeid(OwnSource).name(), {}, journal, name) {
}

OptionValue OwnSource::set(const std::string& key, OptionValue value) {
    return table.set(key, numberIn(value));
}

/// Clears the flag that makes std::cerr flush after every operation, so that only the library's own
/// flushes count.
StandardErrorCapture::StandardErrorCapture(Journal& newJournal)
    : journal(newJournal), before(std::cerr.rdbuf(this)), flagsBefore(std::cerr.flags()) {
    std::cerr.unsetf(std::ios_base::unitbuf);
}

StandardErrorCapture::~StandardErrorCapture() {
    std::cerr.rdbuf(before);
    std::cerr.flags(flagsBefore);
}

StandardErrorCapture::int_type StandardErrorCapture::overflow(int_type character) {
    unflushed.push_back(traits_type::to_char_type(character));
    return character;
}

int StandardErrorCapture::sync() {
    journal.note("standard error: " + std::exchange(unflushed, {}));
    return 0;
}

LibraryConfiguration::LibraryConfiguration(Journal& journal, bool logs)
    : capture([&journal](const LogRecord& record) { journal.note("log: " + record.message); }),
      standardError(journal) {
    if (logs)
        foundation::log::set_diagnostic_mask("connector::configuration", 8);
    for (std::size_t i = 0; i < ownSources; ++i)
        own.push_back(std::make_shared<OwnSource>(journal, "source " + std::to_string(i)));
    configuration = std::make_shared<ConfigurationImpl>();
}

std::string LibraryConfiguration::get(const std::string& key) {
    return outcome(configuration->get(key));
}

std::string LibraryConfiguration::getOption(const std::string& key) {
    return outcome(configuration->getOption(key));
}

std::string LibraryConfiguration::has(const std::string& key) {
    return outcome(configuration->has(key));
}

std::string LibraryConfiguration::keys() {
    return outcome(configuration->keys());
}

std::string LibraryConfiguration::set(const std::string& key, int value) {
    return outcome(configuration->set(key, value));
}

std::string LibraryConfiguration::set(const std::string& key, int value,
                                      const std::string& source) {
    return outcome(configuration->set(key, value, source));
}

std::string LibraryConfiguration::addInMemorySource(const std::string& name,
                                                    const std::string& group, int order,
                                                    bool readOnly, const Entries& entries) {
    return outcome(configuration->addInMemorySource(
        name, group, order, readOnly,
        std::unordered_map<std::string, OptionValue>(entries.begin(), entries.end())));
}

std::string LibraryConfiguration::addOwnSource(const std::string& name, const std::string& group,
                                               int order, bool readOnly, std::size_t index) {
    return outcome(configuration->addSource(name, group, order, readOnly, own[index]));
}

std::string LibraryConfiguration::removeSource(const std::string& name) {
    return outcome(configuration->removeSource(name));
}

std::unique_ptr<Stream> LibraryConfiguration::watchOption(const std::string& key) {
    return std::make_unique<LibraryStream<OptionValue>>(configuration->watchOption(key));
}

} // namespace test::model
