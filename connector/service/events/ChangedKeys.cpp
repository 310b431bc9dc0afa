#include <connector/service/events/ChangedKeys.hpp>

#include <new>
#include <utility>

namespace connector::service {

void ChangedKeys::add(const std::string& key) noexcept {
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (keys.isEvery)
            return; // it has been told
        try {
            keys.some.insert(key);
        } catch (const std::bad_alloc&) {
            keys.isEvery = true;
        }
        keys.isEvery = keys.isEvery || keys.some.size() > maxKeys;
        if (keys.isEvery)
            keys.some.clear();
    }
    signal->raise();
}

void ChangedKeys::addEvery() noexcept {
    {
        const std::lock_guard<std::mutex> lock(mutex);
        keys.isEvery = true;
        keys.some.clear();
    }
    signal->raise();
}

ChangedKeys::Keys ChangedKeys::take() {
    const std::lock_guard<std::mutex> lock(mutex);
    return std::exchange(keys, Keys());
}

} // namespace connector::service
