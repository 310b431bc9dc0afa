#include "arguments/FileArgument.hpp"

#include "arguments/Members.hpp"
#include "values/WrongArguments.hpp"

#include <map>

namespace connector_config {

using connector::sources::FileFormat;
using connector::sources::formatByExtension;

namespace {

constexpr std::string_view longForm = "path=";

FileFormat formatFromName(const std::string& name) {
    static const std::map<std::string, FileFormat> formats{{"properties", FileFormat::Properties},
                                                           {"json", FileFormat::Json},
                                                           {"yaml", FileFormat::Yaml},
                                                           {"toml", FileFormat::Toml}};
    const auto format = formats.find(name);
    if (format == formats.end())
        throw WrongArguments("Format is neither properties, json, yaml nor toml: " + name);
    return format->second;
}

/// Any other extension is common for property files.
FileFormat formatOf(const std::string& path) {
    return formatByExtension(path).value_or(FileFormat::Properties);
}

bool readOptional(const std::string& text) {
    if (text != "true" && text != "false")
        throw WrongArguments("Optional is neither true nor false: " + text);
    return text == "true";
}

FileArgument fileOf(const Members& members) {
    FileArgument file;
    file.path = *members.find("path");
    file.name = members.find("name").value_or(file.path);
    file.group = members.find("group").value_or("");
    file.order = members.order(file.order);
    const std::optional<std::string> format = members.find("format");
    file.format = format ? formatFromName(*format) : formatOf(file.path);
    file.optional = readOptional(members.find("optional").value_or("false"));
    return file;
}

bool isLongForm(const std::string& text) {
    return text.compare(0, longForm.size(), longForm) == 0;
}

FileArgument plainFile(const std::string& path) {
    FileArgument file;
    file.path = file.name = path;
    file.format = formatOf(path);
    return file;
}

} // namespace

FileArgument parseFileArgument(const std::string& text) {
    if (!isLongForm(text))
        return plainFile(text);
    return fileOf({text, {"path", "name", "group", "order", "format", "optional"}, "FILE"});
}

FileArgument parseImportedFile(const std::string& text) {
    if (!isLongForm(text))
        return plainFile(text);
    return fileOf({text, {"path", "format"}, "FILE to import"});
}

} // namespace connector_config
