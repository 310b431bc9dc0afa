#include "arguments/EtcdArgument.hpp"

#include "arguments/Members.hpp"
#include "values/WrongArguments.hpp"

#include <connector/service/client/ServiceUrl.hpp>

#include <map>
#include <optional>

namespace connector_config {

namespace {

using Start = EtcdArgument::Start;

constexpr const char* option = "--etcd";

std::string required(const Members& members, const char* name) {
    const std::optional<std::string> value = members.find(name);
    if (!value)
        throw WrongArguments("--etcd requires the member " + std::string(name));
    if (value->empty())
        throw WrongArguments("Member of --etcd is empty: " + std::string(name));
    return *value;
}

/// @return nothing but URLs that name host and port
std::vector<std::string> endpointsOf(const Members& members) {
    required(members, "endpoint");
    for (const std::string& endpoint : members.all("endpoint")) {
        const auto url = connector::service::parseServiceUrl(endpoint);
        const std::string port = url ? ':' + url->port : "";
        const bool hasPort = url && !url->isUnix() && url->authority.size() > port.size() &&
                             url->authority.substr(url->authority.size() - port.size()) == port;
        if (!hasPort)
            throw WrongArguments("Not of the form http://HOST:PORT or https://HOST:PORT: " +
                                 endpoint);
    }
    return members.all("endpoint");
}

Start startOf(const Members& members) {
    static const std::map<std::string, Start> starts{
        {"wait", Start::Wait}, {"cached", Start::Cached}, {"empty", Start::Empty}};
    const std::string text = members.find("start").value_or("wait");
    const auto start = starts.find(text);
    if (start == starts.end())
        throw WrongArguments("Start is neither wait, cached nor empty: " + text);
    return start->second;
}

void require(const std::string& first, const char* firstName, const std::string& second,
             const char* secondName) {
    if (!first.empty() && second.empty())
        throw WrongArguments(std::string(firstName) + " of --etcd requires " + secondName);
}

} // namespace

EtcdArgument parseEtcdArgument(const std::string& text) {
    if (!hasEtcd)
        throw WrongArguments("This program was built without etcd: --etcd");
    const Members members(text,
                          {"endpoint", "prefix", "name", "group", "order", "user", "password-file",
                           "ca", "cert", "key", "cache", "start"},
                          option, "endpoint");
    EtcdArgument etcd;
    etcd.endpoints = endpointsOf(members);
    etcd.prefix = required(members, "prefix");
    etcd.name = members.find("name").value_or(etcd.name);
    etcd.group = members.find("group").value_or("");
    etcd.order = members.order(etcd.order);
    etcd.user = members.find("user").value_or("");
    etcd.passwordFile = members.find("password-file").value_or("");
    etcd.authorities = members.find("ca").value_or("");
    etcd.certificate = members.find("cert").value_or("");
    etcd.key = members.find("key").value_or("");
    etcd.cacheFile = members.find("cache").value_or("");
    etcd.start = startOf(members);
    require(etcd.passwordFile, "password-file", etcd.user, "user");
    require(etcd.certificate, "cert", etcd.key, "key");
    require(etcd.key, "key", etcd.certificate, "cert");
    return etcd;
}

} // namespace connector_config
