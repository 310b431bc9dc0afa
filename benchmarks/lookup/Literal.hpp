/// The documented lookup step by step: it searches the layers for one that has the key, then
/// searches them again for the value. It copies the key without its group for every layer. It
/// creates a pending future under the lock and then resolves it.
#pragma once

#include "LookupCase.hpp"

#include <connector/async/Future.hpp>

#include <boost/variant/get.hpp>

#include <exception>
#include <memory>
#include <mutex>
#include <stdexcept>

namespace bench::lookup {

class Literal {
public:
    explicit Literal(const Tables& tables) : group(tables.group()), layers(tables.make()) {}

    template <typename T>
    T get(const std::string& key) {
        return boost::get<T>(find(key).get());
    }

private:
    using Future = connector::Future<OptionValue>;
    using State = connector::detail::SharedFutureState<OptionValue>;

    Future find(const std::string& key) {
        const std::lock_guard<std::recursive_mutex> lock(mutex);
        auto state = std::make_shared<State>();
        if (supplierOf(key) == nullptr)
            fail(*state, "No option with the specified key was found: " + key);
        else
            state->setValue(supplierOf(key)->at(key.substr(group.size())));
        return Future(std::move(state));
    }

    const Layer* supplierOf(const std::string& key) const {
        for (const Layer& layer : layers) {
            if (key.compare(0, group.size(), group) == 0 && has(layer, key.substr(group.size())))
                return &layer;
        }
        return nullptr;
    }

    static bool has(const Layer& layer, const std::string& localKey) {
        return layer.find(localKey) != layer.end();
    }

    /// Throws and catches the exception, which the future then throws again.
    static void fail(State& state, const std::string& text) {
        try {
            throw std::runtime_error(text);
        } catch (...) {
            state.setException(std::current_exception());
        }
    }

    const std::string group;
    const std::vector<Layer> layers;
    std::recursive_mutex mutex;
};

} // namespace bench::lookup
