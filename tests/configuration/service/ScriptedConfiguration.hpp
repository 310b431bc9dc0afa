/// A configuration that records its calls and returns what a test tells it to.
#pragma once

#include <connector/configuration/Configuration.hpp>

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace test {

/// An operation without a script throws std::logic_error, because the service must not call it.
class ScriptedConfiguration : public connector::configuration::Configuration {
public:
    template <typename T>
    using Future = connector::Future<T>;
    using Option = connector::configuration::Option;
    using OptionValue = connector::configuration::OptionValue;

    std::vector<std::string> calls; ///< with their arguments, in order, `has(a)`
    std::vector<OptionValue> written;

    std::function<Future<bool>()> onHas;
    std::function<Future<Option>()> onGetOption;
    std::function<Future<OptionValue>()> onSet;
    std::function<Future<std::set<std::string>>()> onKeys;
    std::function<Future<bool>()> onAddPropertyFileSource;

    Future<OptionValue> get(const std::string& key) override;
    Future<Option> getOption(const std::string& key) override;
    Future<OptionValue> set(const std::string& key, OptionValue value) override;
    Future<OptionValue> set(const std::string& key, OptionValue value,
                            const std::string& source) override;
    Future<bool> has(const std::string& key) override;
    Future<std::set<std::string>> keys() override;
    std::shared_ptr<
        connector::reactive_streams::CachedValuePublisher<OptionValue, std::function<void()>>>
    watchOption(const std::string& key) override;
    Future<bool> addPropertyFileSource(const std::string& name, const std::string& group, int order,
                                       bool readOnly, const std::u16string& path) override;
    Future<bool> addInMemorySource(const std::string& name, const std::string& group, int order,
                                   bool readOnly,
                                   std::unordered_map<std::string, OptionValue>&& values) override;
    Future<bool> addEnvironmentSource(const std::string& name, const std::string& group,
                                      int order) override;
    Future<bool> removeSource(const std::string& name) override;
    std::shared_ptr<Configuration> getPtr() override;

private:
    template <typename T>
    Future<T> answer(const std::string& call, const std::function<Future<T>()>& script);
};

} // namespace test
