/// The parts of a program in docs/reloading.md.
#include <connector/sources/FileSource.hpp>

#include <csignal>
#include <iostream>
#include <memory>
#include <thread>

namespace test {

void reloadOnSignal(const std::shared_ptr<connector::sources::FileSource>& file) {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGHUP);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr); // before any thread is started
    std::thread([signals, file] {
        for (int signal = 0; sigwait(&signals, &signal) == 0;) {
            try {
                file->reload();
            } catch (const connector::sources::FileError& error) {
                std::cerr << error.what() << '\n'; // the options stay as they were
            }
        }
    }).detach();
}

} // namespace test
