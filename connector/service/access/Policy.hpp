/// What HTTP clients may do. They may read everything; every change must be allowed by an option.
#pragma once

#include <connector/service/access/PropertyRoot.hpp>
#include <connector/service/messages/MessageService.hpp>
#include <connector/service/text/Secrets.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace connector::service {

/// In bytes. Loading takes quadratic time if all keys of a file have the same hash value, so
/// clients must not be able to add files of any size.
constexpr std::uintmax_t maxPropertyFileSize = 64 * 1024 * 1024;

/// Immutable. May be used from any thread.
class Policy {
public:
    /// @param newWritablePrefixes  clients may set the keys that begin with one of these
    /// @param newPropertyRoot      clients may add the files below this directory; none for no
    ///                             files
    /// @param newSecrets           keys whose values are masked in the reply to a ConfigurationSet
    Policy(std::vector<std::string> newWritablePrefixes,
           std::optional<PropertyRoot> newPropertyRoot, Secrets newSecrets)
        : writablePrefixes(std::move(newWritablePrefixes)),
          propertyRoot(std::move(newPropertyRoot)), secrets(std::move(newSecrets)) {}

    /// Where an option would allow a refused message, the refusal names the option.
    ///
    /// The reply to a ConfigurationSet contains the previous value, if there was one. For a secret
    /// key the reply is always masked, so that it does not show whether there was one.
    ///
    /// In an AddPropertyFileSource that is allowed, the path is replaced by one that leads to the
    /// checked file even if its name leads elsewhere by the time the file is opened.
    Decision authorize(Message& message) const;

private:
    Decision authorizeSet(const std::string& key) const;
    Decision authorizeFile(std::u16string& path) const;

    const std::vector<std::string> writablePrefixes;
    const std::optional<PropertyRoot> propertyRoot;
    const Secrets secrets;
};

} // namespace connector::service
