/// The group of the property file that a thread is loading, for code that reads the diagnostic
/// lines of the property file parser.
#pragma once

#include <string>

namespace connector::service {

/// During its lifetime, sets the group of the property file that the calling thread loads.
/// The lines show keys without their group, but whether a key is secret depends on the whole key.
/// Objects of one thread must be destroyed in the reverse order of their construction.
class LoadingGroup {
public:
    /// @param group  with or without a dot at its end; empty for none
    explicit LoadingGroup(const std::string& group);
    ~LoadingGroup();
    LoadingGroup(const LoadingGroup&) = delete;
    LoadingGroup& operator=(const LoadingGroup&) = delete;

    /// @return the prefix of the keys of the file that the calling thread loads: its group and a
    ///         dot, or an empty string
    static const std::string& prefix();

private:
    std::string previousPrefix;
};

} // namespace connector::service
