#include "display/Terminal.hpp"

#include <cstdlib>
#include <string>

#include <sys/ioctl.h>
#include <unistd.h>

namespace connector_config {

namespace {

std::string environment(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

} // namespace

Terminal terminalOfOutput() {
    Terminal terminal;
    if (isatty(STDOUT_FILENO) == 0)
        return terminal;
    terminal.colour = environment("NO_COLOR").empty() && environment("TERM") != "dumb";
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        terminal.width = size.ws_col;
    return terminal;
}

} // namespace connector_config
