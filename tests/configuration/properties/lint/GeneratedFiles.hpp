/// Property files that try everything in which readers may differ.
#pragma once

#include <string>
#include <vector>

namespace test {

/// @return a file in UTF-8; the same seed gives the same file on every system
std::string generatedFile(unsigned seed);

/// @return the same with bytes that are not UTF-8
std::string generatedBytes(unsigned seed);

/// @return the files of the seeds from 1 to `count`
std::vector<std::string> generatedFiles(unsigned count);

} // namespace test
