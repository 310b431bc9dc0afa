/// What others than the user may have done. They may read everything; changes need an option.
#pragma once

#include "serve/MessageService.hpp"
#include "serve/PropertyRoot.hpp"

#include <optional>
#include <string>
#include <vector>

namespace connector_config::serve {

class Policy {
public:
    /// @param newWritable       prefixes of the keys that may be set
    /// @param newPropertyRoot   where files may be added from
    Policy(std::vector<std::string> newWritable, std::optional<PropertyRoot> newPropertyRoot)
        : writable(std::move(newWritable)), propertyRoot(std::move(newPropertyRoot)) {}

    /// A refusal says which option would allow the message. The path of a file that may be added is
    /// replaced by one that cannot lead elsewhere any more.
    Verdict judge(connector::Message& message) const;

private:
    Verdict judgeSet(const std::string& key) const;
    Verdict judgeFile(std::u16string& path) const;

    const std::vector<std::string> writable;
    const std::optional<PropertyRoot> propertyRoot;
};

} // namespace connector_config::serve
