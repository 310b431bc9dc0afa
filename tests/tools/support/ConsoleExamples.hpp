/// The console examples in a document.
#pragma once

#include <fstream>
#include <string>
#include <vector>

namespace test {

struct Example {
    int line;
    std::string command;
    std::string output; ///< standard output and standard error, as they appear on a terminal
};

/// Reads the code blocks marked as console, or with another mark. A line that begins with "$ " is a
/// command, which continues on the next line after a backslash. The lines up to the next command
/// are its output.
class ConsoleExamples {
public:
    explicit ConsoleExamples(const std::string& path, const std::string& mark = "console")
        : file(path) {
        for (std::string line; next(line);) {
            if (line == "```" + mark)
                readBlock();
        }
    }

    std::vector<Example> examples;

private:
    bool next(std::string& line) {
        ++number;
        return static_cast<bool>(std::getline(file, line));
    }

    void readBlock() {
        for (std::string line; next(line) && line != "```";) {
            if (line.rfind("$ ", 0) == 0)
                examples.push_back({number, readCommand(line.substr(2)), ""});
            else if (!examples.empty())
                examples.back().output += line + "\n";
        }
    }

    std::string readCommand(std::string command) {
        std::string line;
        while (command.back() == '\\' && next(line))
            command += "\n" + line;
        return command;
    }

    std::ifstream file;
    int number = 0;
};

} // namespace test
