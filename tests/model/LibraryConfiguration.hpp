/// The library's configuration as a subject. Diagnostic lines and standard error are part of its
/// journal.
#pragma once

#include "Subject.hpp"

#include "support/LogCapture.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>

#include <memory>
#include <ostream>
#include <streambuf>
#include <string>
#include <vector>

namespace test::model {

/// A source of the program's own. It behaves like the model's source, because sources are not what
/// is compared.
class OwnSource final : public connector::configuration::ConfigurationSource {
public:
    using OptionValue = connector::configuration::OptionValue;

    OwnSource(Journal& journal, const std::string& name);

    OptionValue get(const std::string& key) override { return table.get(key); }
    OptionValue set(const std::string& key, OptionValue value) override;
    bool has(const std::string& key) override { return table.has(key); }
    void setWatcher(Watcher watcher) override { table.setWatcher(std::move(watcher)); }
    std::set<std::string> keys() override { return table.keys(); }

    SourceModel table;
};

/// While it exists, writes standard error to a journal, one entry for each flush.
class StandardErrorCapture final : public std::streambuf {
public:
    explicit StandardErrorCapture(Journal& newJournal);
    ~StandardErrorCapture() override;
    StandardErrorCapture(const StandardErrorCapture&) = delete;
    StandardErrorCapture& operator=(const StandardErrorCapture&) = delete;

protected:
    int_type overflow(int_type character) override;
    int sync() override;

private:
    Journal& journal;
    std::string unflushed;
    std::streambuf* const before;
    const std::ios_base::fmtflags flagsBefore;
};

class LibraryConfiguration final : public Subject {
public:
    /// @param journal  outlives the configuration
    /// @param logs     whether diagnostics are on
    LibraryConfiguration(Journal& journal, bool logs);

    std::string get(const std::string& key) override;
    std::string getOption(const std::string& key) override;
    std::string has(const std::string& key) override;
    std::string keys() override;
    std::string set(const std::string& key, int value) override;
    std::string set(const std::string& key, int value, const std::string& source) override;

    std::string addInMemorySource(const std::string& name, const std::string& group, int order,
                                  bool readOnly, const Entries& entries) override;
    std::string addOwnSource(const std::string& name, const std::string& group, int order,
                             bool readOnly, std::size_t index) override;
    std::string removeSource(const std::string& name) override;
    SourceModel& ownSource(std::size_t index) override { return own[index]->table; }

    std::unique_ptr<Stream> watchOption(const std::string& key) override;
    void removeStream(std::uint64_t id) override { configuration->removeStream(id); }

private:
    const LogCapture capture;
    const StandardErrorCapture standardError;
    std::vector<std::shared_ptr<OwnSource>> own;
    std::shared_ptr<connector::configuration::ConfigurationImpl> configuration;
};

} // namespace test::model
