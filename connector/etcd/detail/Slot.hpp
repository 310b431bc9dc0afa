/// A function that can be replaced while it runs.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <utility>

namespace connector::etcd::detail {

/// All functions may be called from any thread. The mutex is never held while a function runs or is
/// destroyed.
template <typename... Arguments>
class Slot {
public:
    using Function = std::function<void(Arguments...)>;

    void set(Function newFunction) {
        auto next =
            newFunction ? std::make_shared<const Function>(std::move(newFunction)) : nullptr;
        const std::lock_guard<std::mutex> lock(mutex);
        function.swap(next); // destroys the old one after unlocking
    }

    /// @return null when there is none
    std::shared_ptr<const Function> get() const {
        const std::lock_guard<std::mutex> lock(mutex);
        return function;
    }

private:
    mutable std::mutex mutex;
    std::shared_ptr<const Function> function;
};

} // namespace connector::etcd::detail
