// Uses the installed library without a server.
#include <connector/etcd/EtcdSource.hpp>

#include <exception>
#include <iostream>

int main() {
    connector::etcd::Options options;
    options.endpoints = {"http://127.0.0.1:2379"};
    try {
        const connector::etcd::EtcdSource source(options);
    } catch (const std::exception& error) {
        std::cout << error.what() << '\n';
    }
}
