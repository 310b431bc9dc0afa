#include "commands/ExitTimer.hpp"

#include <csignal>
#include <cstdlib>

#include <pthread.h>
#include <signal.h>
#include <sys/time.h>
#include <unistd.h>

namespace connector_config {

void exitAfter(std::chrono::milliseconds delay) {
    std::signal(SIGALRM, [](int) { ::_exit(EXIT_SUCCESS); });
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGALRM);
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(delay);
    itimerval timer{};
    timer.it_value.tv_sec = static_cast<time_t>(seconds.count());
    timer.it_value.tv_usec = static_cast<suseconds_t>((delay - seconds).count() * 1000);
    ::setitimer(ITIMER_REAL, &timer, nullptr);
}

} // namespace connector_config
