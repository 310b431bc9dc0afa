/// Runs a program as a child process.
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <sys/types.h>

namespace test {

/// How a program ended, and what it wrote.
struct Result {
    int status; ///< exit status, or 128 and the number of the signal that ended it
    std::string output;
    std::string errors;
};

bool operator==(const Result& left, const Result& right);
void PrintTo(const Result& result, std::ostream* out);

/// How a program is started.
struct RunOptions {
    /// NAME=VALUE, in addition to the current environment; by default NO_COLOR is unset and TERM is
    /// xterm
    std::vector<std::string> environment;
    /// makes standard output a terminal of this width; 0 for unknown
    std::optional<unsigned short> terminal;
    /// makes the program's ends of its standard input and output not block
    bool nonBlocking = false;
    /// makes standard output a file
    std::string outputFile;
};

/// A running program. Reading waits for the program's output, without a time limit.
class Process {
public:
    explicit Process(const std::vector<std::string>& arguments, const RunOptions& options = {});
    ~Process(); ///< closes the input and waits for the program to exit
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    void write(const std::string& text);

    /// @return the next line of its standard output, without the line break; empty at the end
    std::string readLine() { return readLine(output); }
    /// @return the same for standard error
    std::string readErrorLine() { return readLine(errors); }

    void signal(int number); ///< does nothing once finish has returned
    pid_t processId() const { return id; }
    void closeOutput(); ///< closes our end of the pipe from its standard output

    /// Closes the input and waits for the program to exit.
    /// @return the output that has not been read yet
    Result finish();

private:
    struct Pipe {
        int descriptor = -1;
        std::string unread;
    };

    static std::string readLine(Pipe& pipe);
    static bool readMore(Pipe& pipe);
    static void close(int& descriptor);
    void readToEnd();
    int wait();

    pid_t id = -1;
    int input = -1;
    Pipe output;
    Pipe errors;
};

/// Runs a program until it exits.
Result run(const std::vector<std::string>& arguments, const std::string& input = "",
           const RunOptions& options = {});

} // namespace test
