/// Where a result is put together.
#pragma once

#include <memory>
#include <new>
#include <utility>

namespace connector::configuration::detail {

/// Memory for one object on the heap, there before the object is: so it can be allocated before a lock is
/// taken, and the object made where it is to stay.
template <typename T>
class Cell {
public:
    /// Makes the object; called at most once.
    template <typename Source>
    void emplace(Source&& source) {
        object.reset(::new (memory.get()) T(std::forward<Source>(source)));
        (void)memory.release(); // belongs to the object now
    }

    /// @return the object; null if none was made
    std::unique_ptr<T> take() { return std::move(object); }

private:
    struct Free {
        void operator()(void* freed) const { ::operator delete(freed); }
    };
    std::unique_ptr<void, Free> memory{::operator new(sizeof(T))};
    std::unique_ptr<T> object;
};

} // namespace connector::configuration::detail
