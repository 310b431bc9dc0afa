/// Runs a program as a user does and shows what it says.
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <sys/types.h>

namespace test {

/// What a program left behind.
struct Result {
    int status; ///< exit status, or 128 and the number of the signal that ended it
    std::string output;
    std::string errors;
};

bool operator==(const Result& left, const Result& right);
void PrintTo(const Result& result, std::ostream* out);

/// How a program is started, where that is not as usual.
struct Surroundings {
    /// NAME=VALUE each; NO_COLOR is unset and TERM is xterm otherwise
    std::vector<std::string> environment;
    /// the columns of a terminal that standard output is, in place of a pipe; 0 if it does not tell
    std::optional<unsigned short> terminal;
    /// a file that standard output is, in place of a pipe
    std::string outputFile;
};

/// A running program. The calls that read wait for it; nothing here waits for time to pass.
class Process {
public:
    explicit Process(const std::vector<std::string>& arguments,
                     const Surroundings& surroundings = {});
    ~Process(); ///< ends the input and waits for the program
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    void write(const std::string& text);

    /// @return the next line of its standard output, without the line's end; empty at the end
    std::string readLine() { return readLine(output); }
    /// @return the same of its standard error
    std::string readErrorLine() { return readLine(errors); }

    void signal(int number);
    pid_t number() const { return id; } ///< which the system knows it by
    void closeOutput(); ///< so that nobody reads the program's standard output any more

    /// Ends the input and waits. @return all that was not read yet
    Result finish();

private:
    struct Pipe {
        int descriptor = -1;
        std::string unread;
    };

    static std::string readLine(Pipe& pipe);
    static bool readMore(Pipe& pipe);
    static void close(int& descriptor);
    void readToTheEnd();
    int wait();

    pid_t id = -1;
    int input = -1;
    Pipe output;
    Pipe errors;
};

/// Runs a program to its end.
Result run(const std::vector<std::string>& arguments, const std::string& input = "",
           const Surroundings& surroundings = {});

} // namespace test
