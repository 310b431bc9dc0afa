#include <connector/service/access/Policy.hpp>

#include <connector/configuration/service/AddPropertyFileSource.hpp>
#include <connector/configuration/service/ConfigurationSet.hpp>

#include <fl/i18n/codecvt.hpp>

#include <algorithm>

namespace connector::service {

using configuration::AddPropertyFileSource;
using configuration::ConfigurationSet;

namespace {

Decision refused(const std::string& reason) {
    return {reason, nullptr, false};
}

} // namespace

Decision Policy::authorize(Message& message) const {
    if (const auto* const set = dynamic_cast<ConfigurationSet*>(&message))
        return authorizeSet(set->key);
    if (auto* const add = dynamic_cast<AddPropertyFileSource*>(&message))
        return authorizeFile(add->path);
    return {};
}

Decision Policy::authorizeSet(const std::string& key) const {
    const bool isWritable = std::any_of(
        writablePrefixes.begin(), writablePrefixes.end(),
        [&key](const std::string& prefix) { return key.compare(0, prefix.size(), prefix) == 0; });
    if (isWritable)
        return {std::nullopt, nullptr, secrets.isSecret(key)};
    return refused("Key must not be set: " + key + " (--writable PREFIX would allow it)");
}

Decision Policy::authorizeFile(std::u16string& path) const {
    if (!propertyRoot)
        return refused("Files must not be added (--property-root DIR would allow it)");
    const std::string requested =
        fl::i18n::to_string(path, fl::i18n::codecvt_ustring_to_string("UTF-8", true));
    const auto file = propertyRoot->find(requested);
    if (!file) // one text for all reasons, so that clients cannot explore the file system
        return refused("Not a readable regular file below the directory of --property-root: " +
                       requested);
    if (file->size() > maxPropertyFileSize)
        return refused("Property file is larger than 64 MiB: " + requested);
    path = fl::i18n::to_ustring(file->path(), fl::i18n::codecvt_string_to_ustring("UTF-8", true));
    return {std::nullopt, file, false};
}

} // namespace connector::service
