/// The minimal cost of a lookup.
#pragma once

#include "../HandMadeFuture.hpp"
#include "LookupCase.hpp"

#include <boost/variant/get.hpp>

#include <mutex>
#include <stdexcept>

namespace bench::lookup {

/// Only the finds, a copy of the value and what a future needs. Its keys have no group: comparing
/// the group, as a real lookup must, is not part of the minimum.
class WithoutLock {
public:
    explicit WithoutLock(const Tables& tables) : layers(tables.make()) {
        if (!tables.grouped)
            return;
        for (Layer& layer : layers) {
            Layer prefixed;
            for (auto& [key, value] : layer)
                prefixed.emplace(tables.group() + key, std::move(value));
            layer = std::move(prefixed);
        }
    }

    template <typename T>
    T get(const std::string& key) const {
        return boost::get<T>(find(key).get());
    }

protected:
    HandMadeFuture find(const std::string& key) const {
        for (const Layer& layer : layers) {
            const auto entry = layer.find(key);
            if (entry != layer.end())
                return HandMadeFuture(entry->second);
        }
        throw std::runtime_error(key);
    }

private:
    std::vector<Layer> layers;
};

/// The same under a lock, so that two threads can share it.
class Floor : private WithoutLock {
public:
    using WithoutLock::WithoutLock;

    template <typename T>
    T get(const std::string& key) {
        return boost::get<T>(findUnderLock(key).get());
    }

private:
    HandMadeFuture findUnderLock(const std::string& key) {
        const std::lock_guard<std::recursive_mutex> lock(mutex);
        return find(key);
    }

    std::recursive_mutex mutex;
};

} // namespace bench::lookup
