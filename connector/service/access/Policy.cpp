#include <connector/service/access/Policy.hpp>

#include <connector/configuration/service/AddPropertyFileSource.hpp>
#include <connector/configuration/service/ConfigurationSet.hpp>

#include <fl/i18n/codecvt.hpp>

#include <algorithm>

namespace connector::service {

using connector::configuration::AddPropertyFileSource;
using connector::configuration::ConfigurationSet;

namespace {

Verdict refused(const std::string& why) {
    return {why, nullptr, false};
}

} // namespace

Verdict Policy::judge(connector::Message& message) const {
    if (const auto* const set = dynamic_cast<ConfigurationSet*>(&message))
        return judgeSet(set->key);
    if (auto* const add = dynamic_cast<AddPropertyFileSource*>(&message))
        return judgeFile(add->path);
    return {};
}

Verdict Policy::judgeSet(const std::string& key) const {
    const bool isAllowed =
        std::any_of(writable.begin(), writable.end(), [&key](const std::string& prefix) {
            return key.compare(0, prefix.size(), prefix) == 0;
        });
    if (isAllowed)
        return {std::nullopt, nullptr, secrets.hides(key)};
    return refused("Key must not be set: " + key + " (--writable PREFIX would allow it)");
}

Verdict Policy::judgeFile(std::u16string& path) const {
    if (!propertyRoot)
        return refused("Files must not be added (--property-root DIR would allow it)");
    const std::string given =
        fl::i18n::to_string(path, fl::i18n::codecvt_ustring_to_string("UTF-8", true));
    const auto file = propertyRoot->find(given);
    if (!file) // the same for all reasons, so that nobody can ask what there is elsewhere
        return refused("Not a readable regular file below the directory of --property-root: " +
                       given);
    path = fl::i18n::to_ustring(file->path(), fl::i18n::codecvt_string_to_ustring("UTF-8", true));
    return {std::nullopt, file, false};
}

} // namespace connector::service
