/// The newest value of something, for many readers and one writer at a time.
#pragma once

#include <atomic>
#include <cstdint>
#include <cstring>
#include <memory>
#include <mutex>
#include <new>
#include <type_traits>
#include <utility>

namespace connector::configuration::detail {

/// Keeps any type, behind a pointer that is copied under a lock.
template <typename T>
class SharedCell {
public:
    T get() const { return *snapshot(); }

    /// @return null before the first store
    std::shared_ptr<const T> snapshot() const {
        const std::lock_guard<std::mutex> lock(mutex);
        return value;
    }

    void store(T&& newValue) {
        auto next = std::make_shared<const T>(std::move(newValue));
        const std::lock_guard<std::mutex> lock(mutex);
        value.swap(next); // the old one is destroyed after the lock
    }

private:
    mutable std::mutex mutex;
    std::shared_ptr<const T> value;
};

/// Keeps a small type as bits. No thread waits; a read is one load.
template <typename T>
class AtomicCell {
public:
    /// REQUIRES: a store has happened.
    T get() const {
        const std::uint64_t now = bits.load(std::memory_order_acquire);
        alignas(T) unsigned char bytes[sizeof(T)];
        std::memcpy(bytes, &now, sizeof(T));
        return *std::launder(reinterpret_cast<const T*>(bytes));
    }

    std::shared_ptr<const T> snapshot() const { return std::make_shared<const T>(get()); }

    void store(T&& newValue) {
        std::uint64_t next = 0;
        std::memcpy(&next, static_cast<const void*>(&newValue), sizeof(T));
        bits.store(next, std::memory_order_release);
    }

private:
    std::atomic<std::uint64_t> bits{0};
};

template <typename T>
using ValueCell =
    std::conditional_t<std::is_trivially_copyable_v<T> && sizeof(T) <= sizeof(std::uint64_t),
                       AtomicCell<T>, SharedCell<T>>;

} // namespace connector::configuration::detail
