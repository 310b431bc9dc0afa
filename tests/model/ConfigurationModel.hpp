/// The reference model of a configuration: registry, lookups and streams as linear searches, for
/// one thread. It follows the rules literally and shares no code with the library.
#pragma once

#include "PublisherModel.hpp"
#include "Subject.hpp"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace test::model {

class ConfigurationModel final : public Subject {
public:
    /// @param newJournal   outlives the model
    /// @param newLogs      whether diagnostics are on
    /// @param typeOfOwn    the type name of the program's own sources in diagnostic lines
    ConfigurationModel(Journal& newJournal, bool newLogs, const std::string& typeOfOwn);
    ~ConfigurationModel() override;

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
    SourceModel& ownSource(std::size_t index) override { return *own[index]; }

    std::unique_ptr<Stream> watchOption(const std::string& key) override;
    void removeStream(std::uint64_t id) override;

private:
    struct Record {
        std::string name;
        std::string group;
        int order;
        bool readOnly;
        std::shared_ptr<SourceModel> source;
    };
    struct OptionStream {
        std::uint64_t id;
        std::string key;
        std::shared_ptr<PublisherModel> publisher;
    };

    std::string addSource(const std::string& name, const std::string& group, int order,
                          bool readOnly, const std::shared_ptr<SourceModel>& source);
    std::string write(const Record& record, const std::string& key, int value);
    const Record* find(const std::string& name) const;
    const Record* supplier(const std::string& key) const;
    bool doHas(const std::string& key) const { return supplier(key) != nullptr; }
    int doGet(const std::string& key);
    void updatePublishers(const std::string& key);
    void log(const std::string& line);

    Journal& journal;
    const bool logs;
    std::shared_ptr<int> life = std::make_shared<int>();
    std::uint64_t nextStreamId = 0;
    std::vector<std::shared_ptr<SourceModel>> own;
    std::vector<Record> sources;
    std::vector<OptionStream> streams;
};

} // namespace test::model
