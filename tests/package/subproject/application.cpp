#include <connector/configuration/ConfigurationImpl.hpp>

int main() {
    int unused; // a warning, and nothing worse
    return connector::configuration::ConfigurationImpl().has("key").get() ? 1 : 0;
}
