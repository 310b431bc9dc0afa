/// One delivery of a value to the streams of a key.
#pragma once

#include <connector/configuration/watching/OptionStreams.hpp>

#include <boost/container/small_vector.hpp>

#include <cstdint>
#include <string>

namespace connector::configuration::detail {

/// A pass over the streams of one key, in the order in which they were added. The set of streams
/// that it serves is fixed when it begins.
///
/// While it lives, it keeps every publisher of that moment alive, including those of other keys,
/// even if their streams are removed in the meantime. It does so without reference counts, which
/// would make a change of an int with 1,000 watchers take half as long again: a removed stream is
/// instead handed to a pass that began before its removal.
///
/// It is made and destroyed under the configuration's mutex, which is released in between. Several
/// passes can run at a time, on several threads or nested.
class NotificationPass {
public:
    /// Most keys have few watchers: these need no memory from the heap, which would make a change
    /// take a tenth longer.
    using Publishers = boost::container::small_vector<OptionPublisher*, 4>;

    NotificationPass(OptionStreams& newStreams, const std::string& key);

    /// Releases the publishers of removed streams, in the order in which the streams were added,
    /// unless another pass keeps them. That can call subscribers and finish callbacks.
    ~NotificationPass();

    NotificationPass(const NotificationPass&) = delete;
    NotificationPass& operator=(const NotificationPass&) = delete;

    const Publishers& publishers() const { return served; }

private:
    friend class OptionStreams;

    /// @return whether the stream was there when the pass began
    bool keeps(std::uint64_t id) const { return id < end; }

    Publishers publishersOf(const std::string& key) const;

    OptionStreams& streams;
    const std::uint64_t end; // greater than the ids of all streams that existed then
    const Publishers served;
    OptionStreams::Streams removed;
};

} // namespace connector::configuration::detail
