/// What others than the user may have done. They may read everything; changes need an option.
#pragma once

#include <connector/service/access/PropertyRoot.hpp>
#include <connector/service/messages/MessageService.hpp>
#include <connector/service/text/Secrets.hpp>

#include <optional>
#include <string>
#include <vector>

namespace connector::service {

class Policy {
public:
    /// @param newWritable       prefixes of the keys that may be set
    /// @param newPropertyRoot   where files may be added from
    /// @param newSecrets        the keys whose values are not shown to those who set them
    Policy(std::vector<std::string> newWritable, std::optional<PropertyRoot> newPropertyRoot,
           Secrets newSecrets)
        : writable(std::move(newWritable)), propertyRoot(std::move(newPropertyRoot)),
          secrets(std::move(newSecrets)) {}

    /// A refusal says which option would allow the message. The reply to a set tells what was there
    /// before, so that of a secret hides its value, whether something was there or not. The path of a
    /// file that may be added is replaced by one that cannot lead elsewhere any more.
    Verdict judge(connector::Message& message) const;

private:
    Verdict judgeSet(const std::string& key) const;
    Verdict judgeFile(std::u16string& path) const;

    const std::vector<std::string> writable;
    const std::optional<PropertyRoot> propertyRoot;
    const Secrets secrets;
};

} // namespace connector::service
