#include <connector/etcd/detail/Reading.hpp>

#include <connector/etcd/detail/Checksum.hpp>
#include <connector/etcd/detail/Keys.hpp>

namespace connector::etcd::detail {

ReadKey readKey(const std::string& key, const std::string& prefix) {
    ReadKey read;
    read.isOutside = key.compare(0, prefix.size(), prefix) != 0;
    if (read.isOutside)
        return read;
    read.local = key.substr(prefix.size());
    read.isIgnored = !isOptionKey(read.local);
    return read;
}

Witness witnessOf(const etcdserverpb::KeyValue& entry) {
    return {entry.key(), entry.mod_revision(), checksumOf(entry.value()), 0};
}

bool shows(const etcdserverpb::RangeResponse& answer, const Witness& witness) {
    if (answer.kvs_size() != 1)
        return false;
    const etcdserverpb::KeyValue& entry = answer.kvs(0);
    return entry.key() == witness.key && entry.mod_revision() == witness.modRevision &&
           checksumOf(entry.value()) == witness.valueSum;
}

} // namespace connector::etcd::detail
