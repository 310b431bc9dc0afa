/// Where the commands read options.
#pragma once

#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/configuration/SourceAnswer.hpp>

#include <optional>
#include <string>
#include <vector>

namespace connector_config {

/// Every function throws what its source of options throws.
class OptionReader {
public:
    using Option = connector::configuration::Option;
    using OptionValue = connector::configuration::OptionValue;
    using SourceAnswer = connector::configuration::SourceAnswer;

    /// What there is for a key.
    struct Answer {
        std::optional<Option> option;
        std::string failure; ///< if there is none
    };

    virtual ~OptionReader() = default;

    /// @return the value, even if it is secret
    /// @throws "No option with the specified key was found: " + key
    virtual OptionValue value(const std::string& key) = 0;

    /// @return an answer for each key, even if it is secret; those of a configuration of this
    ///         process are as of one moment
    virtual std::vector<Answer> answers(const std::vector<std::string>& keys) = 0;

    /// @return all keys that begin with the prefix, sorted
    virtual std::vector<std::string> keys(const std::string& prefix) = 0;

    /// @return the options whose keys begin with the prefix, sorted, as of one moment; secrets may
    ///         be masked
    virtual std::vector<Option> options(const std::string& prefix) = 0;

    /// @return what each source has for a key, in the order of consultation; secrets may be masked
    virtual std::vector<SourceAnswer> explain(const std::string& key) = 0;
};

/// Reads a configuration of this process.
class LocalOptions : public OptionReader {
public:
    using ConfigurationImpl = connector::configuration::ConfigurationImpl;

    /// @param newConfiguration  must outlive this object
    explicit LocalOptions(ConfigurationImpl& newConfiguration) : configuration(newConfiguration) {}

    OptionValue value(const std::string& key) override;
    std::vector<Answer> answers(const std::vector<std::string>& keys) override;
    std::vector<std::string> keys(const std::string& prefix) override;
    std::vector<Option> options(const std::string& prefix) override;
    std::vector<SourceAnswer> explain(const std::string& key) override;

private:
    ConfigurationImpl& configuration;
};

} // namespace connector_config
