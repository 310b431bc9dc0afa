/// The failure of a write whose outcome is not known.
#pragma once

#include <connector/etcd/Export.hpp>

#include <stdexcept>
#include <string>

namespace connector::etcd {

/// The write was sent and no answer came in time: it may have happened, or may still happen. The
/// text is "Unknown whether it was written: CAUSE".
class CONNECTOR_ETCD_EXPORT Unknown : public std::runtime_error {
public:
    explicit Unknown(const std::string& cause);
    ~Unknown() override;
    Unknown(const Unknown&) = default;
    Unknown& operator=(const Unknown&) = default;
};

} // namespace connector::etcd
