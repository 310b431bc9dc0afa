/// From the stream of an option to a follower.
#pragma once

#include <connector/Export.hpp>
#include <connector/configuration/Configuration.hpp>
#include <connector/configuration/typed/detail/Follower.hpp>

#include <memory>
#include <string>

namespace connector::configuration::detail {

class Hinter;

/// Hints a follower at every value of an option's stream, for as long as the link lives. Keeps
/// neither the configuration nor the follower alive.
class CONNECTOR_EXPORT StreamLink {
public:
    /// Takes the configuration's lock; so does the destructor, while the configuration lives.
    /// @throws what watchOption throws
    StreamLink(Configuration& configuration, const std::string& key,
               std::weak_ptr<Follower> follower);
    StreamLink(StreamLink&& other) noexcept;
    StreamLink& operator=(StreamLink&&) = delete;
    ~StreamLink();

private:
    std::shared_ptr<Hinter> hinter; // null when moved from
};

} // namespace connector::configuration::detail
