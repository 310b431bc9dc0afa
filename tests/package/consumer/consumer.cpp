// Uses parts of the core, of its JSON conversion, of the platform and of the logging core that the
// library shares with the application.
#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/configuration/json/OptionValueJson.hpp>
#include <foundation/log/basic_diagnostic_logger.hpp>

#include <boost/log/expressions.hpp>
#include <boost/log/utility/setup/console.hpp>

#include <iostream>

int main() {
    namespace log = boost::log;
    log::add_console_log(std::cout, log::keywords::format = log::expressions::stream
                                                            << log::expressions::smessage);

    const auto configuration = std::make_shared<connector::configuration::ConfigurationImpl>();
    configuration->addInMemorySource("site", "net", 100, true, {{"port", 8080}});
    foundation::log::set_diagnostic_mask("connector::configuration", 8);
    configuration->set("net.port", 9090, "default");

    const auto port = configuration->getOption("net.port").get();
    std::cout << port.key << " = ";
    connector::configuration::fromOptionValue(port.value)->stringify(std::cout);
    std::cout << " from " << port.source << '\n';
    return 0; // necessary, because this function may be renamed
}
