#include "BackgroundProcess.hpp"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace test {

namespace {

[[noreturn]] void become(const std::vector<char*>& arguments, const char* log) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    const int file = ::open(log, O_WRONLY | O_CREAT | O_APPEND, 0600);
    ::dup2(file, STDOUT_FILENO);
    ::dup2(file, STDERR_FILENO);
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    ::execvp(arguments.front(), arguments.data());
    ::_exit(127);
}

} // namespace

BackgroundProcess::BackgroundProcess(const std::vector<std::string>& command,
                                     const std::filesystem::path& log) {
    std::vector<char*> arguments;
    for (const std::string& word : command)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    id = ::fork();
    if (id < 0)
        throw std::runtime_error("cannot start " + command.front());
    if (id == 0)
        become(arguments, log.c_str());
}

BackgroundProcess::~BackgroundProcess() {
    kill();
}

void BackgroundProcess::signal(int number) const {
    if (id > 0)
        ::kill(id, number);
}

void BackgroundProcess::kill() {
    if (id <= 0)
        return;
    ::kill(id, SIGKILL);
    ::waitpid(id, nullptr, 0);
    id = 0;
}

std::string runProgram(const std::string& command) {
    std::FILE* const pipe = ::popen((command + " 2>&1").c_str(), "r");
    if (pipe == nullptr)
        throw std::runtime_error("cannot run " + command);
    std::string output;
    std::array<char, 4096> part{};
    while (const std::size_t count = std::fread(part.data(), 1, part.size(), pipe))
        output.append(part.data(), count);
    if (::pclose(pipe) != 0)
        throw std::runtime_error(command + ":\n" + output);
    return output;
}

} // namespace test
