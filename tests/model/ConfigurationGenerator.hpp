/// Generates random programs for a configuration and its streams. There are few keys, groups and
/// names, so that operations interact.
#pragma once

#include "Generator.hpp"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace test::model {

class ConfigurationGenerator final : public Generator {
public:
    using Generator::Generator;

    /// Every key that a program uses.
    static const std::vector<std::string>& keys();

    static Operation enumerate();
    static Operation getOption(const std::string& key);
    static Operation destroy();

protected:
    Operation operation() override;

private:
    using Maker = Operation (ConfigurationGenerator::*)();

    static std::vector<Maker> weighted(const std::vector<std::pair<std::size_t, Maker>>& choices);

    Operation get();
    Operation getAnOption() { return getOption(key()); }
    Operation has();
    Operation listKeys() { return enumerate(); }
    Operation set();
    Operation setInSource();
    Operation addInMemorySource();
    Operation addOwnSource();
    Operation removeSource();
    Operation changeOwnSource();
    Operation injectFault();
    Operation watch();
    Operation watchAndSubscribe();
    Operation removeStream();

    const std::string& key();
    const std::string& localKey();
    const std::string& name();
    const std::string& group();
    int order();
    Entries entries();
};

} // namespace test::model
