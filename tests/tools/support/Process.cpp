#include "tools/support/Process.hpp"

#include <cerrno>
#include <csignal>
#include <map>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <spawn.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace test {

namespace {

void check(int error) {
    if (error != 0)
        throw std::system_error(error, std::generic_category());
}

struct Ends {
    int reading = -1;
    int writing = -1;
};

Ends makePipe() {
    int ends[2];
    check(pipe2(ends, O_CLOEXEC) == 0 ? 0 : errno);
    return {ends[0], ends[1]};
}

/// The program gets the writing end.
Ends makeTerminal(unsigned short columns) {
    Ends ends;
    termios raw{};
    cfmakeraw(&raw); // no conversion of line breaks
    winsize size{};
    size.ws_row = 24;
    size.ws_col = columns;
    check(openpty(&ends.reading, &ends.writing, nullptr, &raw, &size) == 0 ? 0 : errno);
    check(fcntl(ends.reading, F_SETFD, FD_CLOEXEC) == 0 ? 0 : errno);
    check(fcntl(ends.writing, F_SETFD, FD_CLOEXEC) == 0 ? 0 : errno);
    return ends;
}

Ends makeFileOutput(const std::string& file) {
    Ends ends = makePipe();
    ::close(ends.writing);
    ends.writing = open(file.c_str(), O_WRONLY | O_CLOEXEC);
    check(ends.writing >= 0 ? 0 : errno);
    return ends;
}

Ends makeOutput(const RunOptions& options) {
    if (options.terminal)
        return makeTerminal(*options.terminal);
    if (!options.outputFile.empty())
        return makeFileOutput(options.outputFile);
    return makePipe();
}

void setNonBlocking(int descriptor) {
    check(fcntl(descriptor, F_SETFL, fcntl(descriptor, F_GETFL) | O_NONBLOCK) == 0 ? 0 : errno);
}

std::vector<std::string> environmentOf(const RunOptions& options) {
    std::map<std::string, std::string> variables; // NAME=VALUE by name
    const auto add = [&variables](const std::string& variable) {
        variables[variable.substr(0, variable.find('='))] = variable;
    };
    for (char** variable = environ; *variable != nullptr; ++variable)
        add(*variable);
    variables.erase("NO_COLOR");
    add("TERM=xterm");
    for (const std::string& variable : options.environment)
        add(variable);

    std::vector<std::string> all;
    for (const auto& [name, variable] : variables)
        all.push_back(variable);
    return all;
}

std::vector<char*> pointersTo(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (const std::string& text : texts)
        pointers.push_back(const_cast<char*>(text.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

/// Resets what this process ignores: the program gets the default signal handling.
class SpawnAttributes {
public:
    SpawnAttributes() {
        check(posix_spawnattr_init(&attributes));
        sigset_t defaults;
        sigemptyset(&defaults);
        sigaddset(&defaults, SIGPIPE);
        check(posix_spawnattr_setsigdefault(&attributes, &defaults));
        check(posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF));
    }
    ~SpawnAttributes() { posix_spawnattr_destroy(&attributes); }
    SpawnAttributes(const SpawnAttributes&) = delete;
    SpawnAttributes& operator=(const SpawnAttributes&) = delete;

    posix_spawnattr_t attributes;
};

class SpawnActions {
public:
    SpawnActions() { check(posix_spawn_file_actions_init(&actions)); }
    ~SpawnActions() { posix_spawn_file_actions_destroy(&actions); }
    SpawnActions(const SpawnActions&) = delete;
    SpawnActions& operator=(const SpawnActions&) = delete;

    void redirect(int from, int to) { check(posix_spawn_file_actions_adddup2(&actions, from, to)); }

    posix_spawn_file_actions_t actions;
};

} // namespace

bool operator==(const Result& left, const Result& right) {
    return left.status == right.status && left.output == right.output &&
           left.errors == right.errors;
}

void PrintTo(const Result& result, std::ostream* out) {
    *out << "status " << result.status << "\n--- output\n"
         << result.output << "--- errors\n"
         << result.errors << "---";
}

Process::Process(const std::vector<std::string>& arguments, const RunOptions& options) {
    std::signal(SIGPIPE, SIG_IGN); // the program may exit without reading its input
    const Ends in = makePipe();
    const Ends out = makeOutput(options);
    const Ends err = makePipe();
    if (options.nonBlocking) {
        setNonBlocking(in.reading);
        setNonBlocking(out.writing);
    }
    SpawnActions redirections;
    redirections.redirect(in.reading, STDIN_FILENO);
    redirections.redirect(out.writing, STDOUT_FILENO);
    redirections.redirect(err.writing, STDERR_FILENO);
    const SpawnAttributes signals;
    const std::vector<std::string> environment = environmentOf(options);
    const int error =
        posix_spawnp(&id, arguments.front().c_str(), &redirections.actions, &signals.attributes,
                     pointersTo(arguments).data(), pointersTo(environment).data());
    for (const int childEnd : {in.reading, out.writing, err.writing})
        ::close(childEnd);
    input = in.writing;
    output.descriptor = out.reading;
    errors.descriptor = err.reading;
    check(error);
}

Process::~Process() {
    close(input);
    if (id >= 0) {
        readToEnd();
        wait();
    }
    close(output.descriptor);
    close(errors.descriptor);
}

void Process::write(const std::string& text) {
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t written = ::write(input, text.data() + done, text.size() - done);
        if (written < 0)
            return; // the program has exited; its output tells why
        done += static_cast<std::size_t>(written);
    }
}

std::string Process::readLine(Pipe& pipe) {
    std::size_t end = pipe.unread.find('\n');
    while (end == std::string::npos && readMore(pipe))
        end = pipe.unread.find('\n');
    const std::string line = pipe.unread.substr(0, end);
    pipe.unread.erase(0, end == std::string::npos ? end : end + 1);
    return line;
}

void Process::signal(int number) {
    if (id > 0) // otherwise the program has ended, and -1 would be every process there is
        ::kill(id, number);
}

void Process::closeOutput() {
    close(output.descriptor);
}

Result Process::finish() {
    close(input);
    readToEnd();
    return {wait(), output.unread, errors.unread};
}

/// @return false at the end. Reading from a terminal fails when the program has exited.
bool Process::readMore(Pipe& pipe) {
    char buffer[4096];
    const ssize_t count = pipe.descriptor < 0 ? 0 : ::read(pipe.descriptor, buffer, sizeof buffer);
    if (count <= 0)
        return false;
    pipe.unread.append(buffer, static_cast<std::size_t>(count));
    return true;
}

void Process::readToEnd() {
    pollfd waiting[] = {{output.descriptor, POLLIN, 0}, {errors.descriptor, POLLIN, 0}};
    Pipe* const pipes[] = {&output, &errors};
    while (waiting[0].fd >= 0 || waiting[1].fd >= 0) {
        if (poll(waiting, 2, -1) < 0)
            continue;
        for (int i = 0; i < 2; ++i) {
            if (waiting[i].revents != 0 && !readMore(*pipes[i]))
                waiting[i].fd = -1;
        }
    }
}

int Process::wait() {
    int status = 0;
    while (waitpid(id, &status, 0) < 0 && errno == EINTR) {
    }
    id = -1;
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

void Process::close(int& descriptor) {
    if (descriptor >= 0)
        ::close(descriptor);
    descriptor = -1;
}

Result run(const std::vector<std::string>& arguments, const std::string& input,
           const RunOptions& options) {
    Process process(arguments, options);
    process.write(input);
    return process.finish();
}

} // namespace test
