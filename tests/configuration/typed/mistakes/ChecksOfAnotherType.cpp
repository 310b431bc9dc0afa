/// Does not compile. Each macro selects one mistake with the check of an option.
#include <connector/configuration/typed/OptionSchema.hpp>

#include <chrono>

using namespace connector::configuration;

struct Settings {
    int port = 80;
    std::chrono::seconds timeout{1};
};

void declare(OptionSchema<Settings>& schema) {
#ifdef IN_RANGE
    schema.option("timeout", &Settings::timeout, "", inRange(1, 5));
#elif defined ONE_OF
    schema.option("timeout", &Settings::timeout, "", oneOf({1, 5}));
#else
    schema.option("port", &Settings::port, "", notEmpty());
#endif
}
