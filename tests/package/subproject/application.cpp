#include <connector/configuration/ConfigurationImpl.hpp>

int main() {
    int unused; // must be a warning, not an error
    return connector::configuration::ConfigurationImpl().has("key").get() ? 1 : 0;
}
