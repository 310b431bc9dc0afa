/// Large texts, each of which is in memory once.
#pragma once

#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

namespace connector::service {

/// Clients that get the same large value share one copy of it, so that many of them that do not
/// read take no more memory than one. May be used from any thread; takes a lock of its own.
class SharedTexts {
public:
    using Text = std::shared_ptr<const std::string>;

    /// Shorter texts are not shared: to find them would cost more than the memory.
    static constexpr std::size_t minSize = 16 * 1024;

    /// @param text  not null
    /// @return an equal text that was returned before and is still in use, or the text itself
    Text shared(Text text);

    /// @return how many texts are known, of which some may not be in use any more
    std::size_t size() const;

private:
    void forgetUnused();

    mutable std::mutex mutex;
    std::unordered_multimap<std::size_t, std::weak_ptr<const std::string>> texts; // by their hash
    std::size_t sizeToForget = 16; // from which on unused texts are looked for
};

} // namespace connector::service
