#include <connector/etcd/Unknown.hpp>

namespace connector::etcd {

Unknown::Unknown(const std::string& cause)
    : runtime_error("Unknown whether it was written: " + cause) {
}

Unknown::~Unknown() = default;

} // namespace connector::etcd
