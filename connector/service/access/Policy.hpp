/// What HTTP clients may do. They may read everything; every change must be allowed by an option.
#pragma once

#include <connector/service/access/PropertyRoot.hpp>
#include <connector/service/messages/MessageService.hpp>
#include <connector/service/text/Secrets.hpp>

#include <connector/configuration/service/AddPropertyFileSource.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace connector::service {

/// The default limit of property files, in bytes. Loading takes quadratic time if all keys of a
/// file have the same hash value, so clients must not be able to add files of any size.
constexpr std::uintmax_t defaultMaxFileSize = 64 * 1024 * 1024;

/// The order of a file for which the client names none. It is consulted after "override".
constexpr int defaultFileOrder = 100;

/// Files must not be consulted before "override" (order 0), whose values the user has chosen.
constexpr int minFileOrder = 1;

/// Immutable. May be used from any thread.
class Policy {
public:
    /// @param newWritablePrefixes  clients may set the keys that begin with one of these
    /// @param newPropertyRoot      clients may add the files below this directory; none for no
    ///                             files
    /// @param newSecrets           keys whose values are masked in the reply to a ConfigurationSet
    /// @param newMaxFileSize       of the files that clients add, in bytes
    Policy(std::vector<std::string> newWritablePrefixes,
           std::optional<PropertyRoot> newPropertyRoot, Secrets newSecrets,
           std::uintmax_t newMaxFileSize = defaultMaxFileSize)
        : writablePrefixes(std::move(newWritablePrefixes)),
          propertyRoot(std::move(newPropertyRoot)), secrets(std::move(newSecrets)),
          maxFileSize(newMaxFileSize) {}

    /// Where an option would allow a refused message, the refusal names the option.
    ///
    /// The reply to a ConfigurationSet contains the previous value, if there was one. For a secret
    /// key the reply is always masked, so that it does not show whether there was one.
    ///
    /// An AddPropertyFileSource that is allowed is changed in two ways. The path is replaced by one
    /// that leads to the checked file even if its name leads elsewhere by the time the file is
    /// opened. And the source becomes read-only, because a writable one would be asked to store
    /// values, which a property file cannot do. The size of a file is its length, also if it is
    /// sparse.
    Decision authorize(Message& message) const;

    /// @return whether clients may set and remove the key
    bool isWritable(const std::string& key) const;

    /// @return why a key that is not writable must not be set
    static std::string refusalToSet(const std::string& key);

private:
    Decision authorizeSet(const std::string& key) const;
    Decision authorizeFile(configuration::AddPropertyFileSource& add) const;

    const std::vector<std::string> writablePrefixes;
    const std::optional<PropertyRoot> propertyRoot;
    const Secrets secrets;
    const std::uintmax_t maxFileSize;
};

} // namespace connector::service
