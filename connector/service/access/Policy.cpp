#include <connector/service/access/Policy.hpp>

#include <connector/configuration/service/ConfigurationSet.hpp>

#include <fl/i18n/codecvt.hpp>

#include <algorithm>

namespace connector::service {

using configuration::AddPropertyFileSource;
using configuration::ConfigurationSet;

namespace {

Decision refused(const std::string& reason) {
    Decision decision;
    decision.refusal = reason;
    return decision;
}

Decision tooLarge(const std::string& reason) {
    Decision decision = refused(reason);
    decision.isTooLarge = true;
    return decision;
}

/// @return in MiB if that is exact, otherwise in bytes
std::string sizeText(std::uintmax_t bytes) {
    constexpr std::uintmax_t mebibyte = 1024 * 1024;
    const bool isExact = bytes != 0 && bytes % mebibyte == 0;
    return isExact ? std::to_string(bytes / mebibyte) + " MiB" : std::to_string(bytes) + " bytes";
}

} // namespace

Decision Policy::authorize(Message& message) const {
    if (const auto* const set = dynamic_cast<ConfigurationSet*>(&message))
        return authorizeSet(set->key);
    if (auto* const add = dynamic_cast<AddPropertyFileSource*>(&message))
        return authorizeFile(*add);
    return {};
}

Decision Policy::authorizeSet(const std::string& key) const {
    if (!isWritable(key))
        return refused(refusalToSet(key));
    Decision decision;
    decision.masksValue = secrets.isSecret(key);
    return decision;
}

bool Policy::isWritable(const std::string& key) const {
    return std::any_of(
        writablePrefixes.begin(), writablePrefixes.end(),
        [&key](const std::string& prefix) { return key.compare(0, prefix.size(), prefix) == 0; });
}

std::string Policy::refusalToSet(const std::string& key) {
    return "Key must not be set: " + key + " (--writable PREFIX would allow it)";
}

Decision Policy::authorizeFile(AddPropertyFileSource& add) const {
    if (!propertyRoot)
        return refused("Files must not be added (--property-root DIR would allow it)");
    if (add.order < minFileOrder)
        return refused("Order of a file must be at least " + std::to_string(minFileOrder) + ": " +
                       std::to_string(add.order));
    const std::string requested =
        fl::i18n::to_string(add.path, fl::i18n::codecvt_ustring_to_string("UTF-8", true));
    const auto file = propertyRoot->find(requested);
    if (!file) // one text for all reasons, so that clients cannot explore the file system
        return refused("Not a readable regular file below the directory of --property-root: " +
                       requested);
    if (file->size() > maxFileSize)
        return tooLarge("Property file is larger than " + sizeText(maxFileSize) + ": " + requested);
    add.readOnly = true;
    add.path =
        fl::i18n::to_ustring(file->path(), fl::i18n::codecvt_string_to_ustring("UTF-8", true));
    return {std::nullopt, file, false, false};
}

} // namespace connector::service
