/// An operation that a completion queue reports.
#pragma once

namespace connector::etcd::detail {

/// Its address is the tag. An operation keeps itself alive while it is on the queue.
class Operation {
public:
    virtual ~Operation() = default;

    /// @param ok  as the queue reports it
    virtual void completed(bool ok) = 0;

    void* tag() { return this; }
    static Operation& of(void* tag) { return *static_cast<Operation*>(tag); }
};

} // namespace connector::etcd::detail
