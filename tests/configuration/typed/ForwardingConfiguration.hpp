/// A configuration that is no ConfigurationImpl.
#pragma once

#include <connector/configuration/ConfigurationImpl.hpp>

#include <memory>
#include <utility>

namespace test {

/// Passes every call on.
class ForwardingConfiguration : public connector::configuration::Configuration {
public:
    template <typename T>
    using Future = connector::Future<T>;
    using Option = connector::configuration::Option;
    using OptionValue = connector::configuration::OptionValue;

    explicit ForwardingConfiguration(std::shared_ptr<Configuration> newTarget)
        : target(std::move(newTarget)) {}

    Future<OptionValue> get(const std::string& key) override { return target->get(key); }
    Future<Option> getOption(const std::string& key) override { return target->getOption(key); }
    Future<OptionValue> set(const std::string& key, OptionValue value) override {
        return target->set(key, std::move(value));
    }
    Future<OptionValue> set(const std::string& key, OptionValue value,
                            const std::string& source) override {
        return target->set(key, std::move(value), source);
    }
    Future<bool> has(const std::string& key) override { return target->has(key); }
    Future<std::set<std::string>> keys() override { return target->keys(); }
    std::shared_ptr<
        connector::reactive_streams::CachedValuePublisher<OptionValue, std::function<void()>>>
    watchOption(const std::string& key) override {
        return target->watchOption(key);
    }
    Future<bool> addPropertyFileSource(const std::string& name, const std::string& group, int order,
                                       bool readOnly, const std::u16string& path) override {
        return target->addPropertyFileSource(name, group, order, readOnly, path);
    }
    Future<bool> addInMemorySource(const std::string& name, const std::string& group, int order,
                                   bool readOnly,
                                   std::unordered_map<std::string, OptionValue>&& values) override {
        return target->addInMemorySource(name, group, order, readOnly, std::move(values));
    }
    Future<bool> addEnvironmentSource(const std::string& name, const std::string& group,
                                      int order) override {
        return target->addEnvironmentSource(name, group, order);
    }
    Future<bool> removeSource(const std::string& name) override {
        return target->removeSource(name);
    }
    std::shared_ptr<Configuration> getPtr() override { return target->getPtr(); }

private:
    const std::shared_ptr<Configuration> target;
};

} // namespace test
