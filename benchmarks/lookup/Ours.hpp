#pragma once

#include "LookupCase.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>

#include <boost/variant/get.hpp>

#include <memory>

namespace bench::lookup {

class Ours {
public:
    explicit Ours(const Tables& tables) {
        configuration->removeSource("override").get();
        configuration->removeSource("default").get();
        std::vector<Layer> layers = tables.make();
        for (std::size_t i = 0; i < layers.size(); ++i)
            configuration
                ->addInMemorySource("layer" + std::to_string(i), tables.group(),
                                    static_cast<int>(i), false, std::move(layers[i]))
                .get();
    }

    template <typename T>
    T get(const std::string& key) {
        return boost::get<T>(configuration->get(key).get());
    }

private:
    using Configuration = connector::configuration::Configuration;

    const std::shared_ptr<Configuration> configuration =
        std::make_shared<connector::configuration::ConfigurationImpl>();
};

} // namespace bench::lookup
