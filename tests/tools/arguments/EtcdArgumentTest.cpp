#include "arguments/EtcdArgument.hpp"

#include "values/WrongArguments.hpp"

#include <gtest/gtest.h>

namespace {

using namespace connector_config;

using Start = EtcdArgument::Start;
using Texts = std::vector<std::string>;

std::string failureOf(const std::string& text) {
    try {
        parseEtcdArgument(text);
    } catch (const WrongArguments& error) {
        return error.what();
    }
    return "";
}

TEST(EtcdArgument, NeedsNothingButEndpointAndPrefix) {
    const EtcdArgument etcd = parseEtcdArgument("endpoint=http://a:1,prefix=fleet/");
    EXPECT_EQ(Texts{"http://a:1"}, etcd.endpoints);
    EXPECT_EQ("fleet/", etcd.prefix);
    EXPECT_EQ("etcd", etcd.name);
    EXPECT_EQ("", etcd.group);
    EXPECT_EQ(60, etcd.order);
    for (const std::string& text : {etcd.user, etcd.passwordFile, etcd.authorities,
                                    etcd.certificate, etcd.key, etcd.cacheFile})
        EXPECT_EQ("", text);
    EXPECT_EQ(Start::Wait, etcd.start);
}

TEST(EtcdArgument, HasMembersInAnyOrder) {
    const EtcdArgument etcd = parseEtcdArgument(
        "start=cached,cache=c,key=k,cert=d,ca=a,password-file=f,user=u,order=-7,group=g,name=n,"
        "prefix=p=q,endpoint=https://[::1]:2,endpoint=http://b:3/,endpoint=https://b.c:4");
    EXPECT_EQ((Texts{"https://[::1]:2", "http://b:3/", "https://b.c:4"}), etcd.endpoints);
    EXPECT_EQ("p=q", etcd.prefix);
    EXPECT_EQ("n", etcd.name);
    EXPECT_EQ("g", etcd.group);
    EXPECT_EQ(-7, etcd.order);
    EXPECT_EQ("u", etcd.user);
    EXPECT_EQ("f", etcd.passwordFile);
    EXPECT_EQ("a", etcd.authorities);
    EXPECT_EQ("d", etcd.certificate);
    EXPECT_EQ("k", etcd.key);
    EXPECT_EQ("c", etcd.cacheFile);
    EXPECT_EQ(Start::Cached, etcd.start);
    EXPECT_EQ(Start::Empty, parseEtcdArgument("endpoint=http://a:1,prefix=p,start=empty").start);
    EXPECT_EQ(Start::Wait, parseEtcdArgument("endpoint=http://a:1,start=wait,prefix=p").start);
}

TEST(EtcdArgument, RefusesEverythingElse) {
    const struct {
        int line;
        const char* text;
        const char* failure;
    } rows[] = {
        {__LINE__, "", "Unknown member of --etcd: "},
        {__LINE__, "fleet/", "Unknown member of --etcd: fleet/"},
        {__LINE__, "prefix=p", "--etcd requires the member endpoint"},
        {__LINE__, "endpoint=http://a:1", "--etcd requires the member prefix"},
        {__LINE__, "endpoint=http://a:1,prefix=", "Member of --etcd is empty: prefix"},
        {__LINE__, "endpoint=,prefix=p", "Member of --etcd is empty: endpoint"},
        {__LINE__, "endpoint=http://a:1,prefix=p,prefix=q", "Repeated member of --etcd: prefix=q"},
        {__LINE__, "endpoint=http://a:1,prefix=p,format=json",
         "Unknown member of --etcd: format=json"},
        {__LINE__, "endpoint=http://a:1,prefix=p,order=x", "Order is not a 32-bit integer: x"},
        {__LINE__, "endpoint=http://a:1,prefix=p,start=now",
         "Start is neither wait, cached nor empty: now"},
        {__LINE__, "endpoint=http://a:1,prefix=p,password-file=f",
         "password-file of --etcd requires user"},
        {__LINE__, "endpoint=http://a:1,prefix=p,cert=f", "cert of --etcd requires key"},
        {__LINE__, "endpoint=http://a:1,prefix=p,key=f", "key of --etcd requires cert"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(row.failure, failureOf(row.text));
    }
}

TEST(EtcdArgument, HasEndpointsWithSchemeHostAndPort) {
    for (const char* url : {"a:1", "ftp://a:1", "unix:/socket", "http://a", "http://:1",
                            "http://a:0", "http://a:65536", "http://a:", "http://a:b",
                            "http://[::1]", "http://a:1/path", "http://80"})
        EXPECT_EQ("Not of the form http://HOST:PORT or https://HOST:PORT: " + std::string(url),
                  failureOf("endpoint=http://a:1,prefix=p,endpoint=" + std::string(url)))
            << url;
}

} // namespace
