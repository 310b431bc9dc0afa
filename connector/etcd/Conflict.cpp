#include <connector/etcd/Conflict.hpp>

namespace connector::etcd {

Conflict::Conflict(const std::string& newKey, std::int64_t newExpected, std::int64_t newActual)
    : runtime_error("Conflict: " + newKey + " is at revision " + std::to_string(newActual) +
                    ", not " + std::to_string(newExpected)),
      conflictingKey(newKey), expectedRevision(newExpected), actualRevision(newActual) {
}

Conflict::~Conflict() = default;

} // namespace connector::etcd
