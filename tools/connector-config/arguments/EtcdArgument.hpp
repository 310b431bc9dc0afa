/// Parses the argument of --etcd.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace connector_config {

/// Whether the program was built with connector::etcd. Without it, --etcd and fleet are invalid.
constexpr bool hasEtcd = CONNECTOR_CONFIG_HAS_ETCD;

struct EtcdArgument {
    /// Where the values come from until the engine answers.
    enum class Start : std::uint8_t {
        Wait,   ///< nowhere, or the cache file if it does not answer in time
        Cached, ///< the cache file
        Empty,  ///< nowhere
    };

    std::vector<std::string> endpoints;
    std::string prefix;
    std::string name = "etcd"; ///< name of the source
    std::string group;
    std::int32_t order = 60;
    std::string user;
    std::string passwordFile;
    std::string authorities; ///< a file, as the following ones
    std::string certificate;
    std::string key;
    std::string cacheFile;
    Start start = Start::Wait;
};

/// Accepts
///     endpoint=URL[,endpoint=URL...],prefix=P[,name=N][,group=G][,order=O][,user=U]
///     [,password-file=F][,ca=F][,cert=F][,key=F][,cache=F][,start=wait|cached|empty]
/// without the line break. The members may come in any order, each at most once except the
/// endpoint. Each value ends at the next comma.
/// @throws WrongArguments, always if the program was built without connector::etcd
EtcdArgument parseEtcdArgument(const std::string& text);

} // namespace connector_config
