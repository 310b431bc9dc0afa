// Reads a file with the installed library.
#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/sources/FileSource.hpp>

#include <boost/variant/get.hpp>

#include <cstdio>
#include <fstream>
#include <iostream>

int main() {
    const char* const name = "components-test.yaml";
    std::ofstream(name) << "net: {port: 8080}\n";
    const auto configuration = std::make_shared<connector::configuration::ConfigurationImpl>();
    configuration->addSource("file", "", 100, true,
                             std::make_shared<connector::sources::FileSource>(name))
        .get();
    std::remove(name);
    std::cout << boost::get<int>(configuration->get("net.port").get()) << '\n';
}
