/// Writes as transactions of the engine.
#pragma once

#include <connector/etcd/Change.hpp>

#include <etcdserverpb/rpc.pb.h>

#include <cstdint>
#include <exception>
#include <string>
#include <vector>

namespace connector::etcd::detail {

/// @throws std::invalid_argument when there is no change, there are more than 128, a key is empty,
///         no UTF-8 or there twice, or a text is not valid Unicode
etcdserverpb::TxnRequest transactionOf(const std::vector<Change>& changes,
                                       const std::string& prefix);

/// @return the failure of a transaction whose expectations were not true
std::exception_ptr conflictOf(const etcdserverpb::TxnRequest& request,
                              const etcdserverpb::TxnResponse& response, const std::string& prefix);

} // namespace connector::etcd::detail
