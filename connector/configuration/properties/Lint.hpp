/// Finds what the library reads otherwise than java.util.Properties, the usual reader of property
/// files. docs/checking-files.md has the rules with examples.
#pragma once

#include <connector/Export.hpp>
#include <connector/configuration/properties/Finding.hpp>

#include <cstddef>
#include <functional>
#include <istream>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace connector::configuration::properties {

/// Reads a property file as PropertyFileSource does and as java.util.Properties does, which gets
/// the file as UTF-8 text without a byte order mark, and compares the two tables.
///
/// Without a finding of a rule for which `isDifference` is true, both have the same options with
/// the same values; with one, they do not. A byte that is not UTF-8 counts as a character that both
/// read alike. A line that changes neither table, for example because the key is given again
/// later, is not reported.
///
/// Reads to the end of the stream, or until it fails, which counts as the end. Uses memory in
/// proportion to the text. May be called from any thread; calls nothing back.
/// @param properties  8-bit text; opened in binary mode, so that carriage returns arrive
/// @return the findings in the order of their places. Each says what the library reads, what
///         java.util.Properties reads, and how to write it so that both agree.
/// @throws what the stream throws where its exceptions are switched on
CONNECTOR_EXPORT std::vector<Finding> lint(std::istream& properties);

/// Whether the value of a key is secret.
using IsSecret = std::function<bool(std::string_view key)>;

/// The same, but the texts show ****** for all values on a line with a secret key.
/// @param isSecret  called during the function, with the keys of either reader
/// @throws also what isSecret throws
CONNECTOR_EXPORT std::vector<Finding> lint(std::istream& properties, const IsSecret& isSecret);

/// Rewrites the lines on which the two readers differ, so that both read what the library reads in
/// the given text. All other lines stay byte for byte. A property that the library loses at the end
/// of the file becomes a comment.
///
/// What no text can say to both stays as it is: escaped halves of surrogate pairs, and malformed
/// escapes that take a part of a character. Without them, `lint` finds no difference in the result.
/// May be called from any thread.
/// @param ignored  a line on which only these rules are broken stays as it is
CONNECTOR_EXPORT std::string fixed(std::string_view properties, const std::set<Rule>& ignored = {});

/// Writes a property so that both readers store exactly this key and value. May be called from any
/// thread.
/// @param key, value  UTF-8 text
/// @return the line, without its line break, which it needs even at the end of a file
CONNECTOR_EXPORT std::string propertyLine(std::string_view key, std::string_view value);

/// A property as PropertyFileSource stores it, and the place of its key.
struct PlacedProperty {
    std::string key;
    std::string value;
    std::size_t line;   ///< from 1
    std::size_t column; ///< in bytes, from 1
};

/// May be called from any thread.
/// @return the properties in the order of the text. Of equal keys, the last one counts.
CONNECTOR_EXPORT std::vector<PlacedProperty> placedProperties(std::string_view properties);

} // namespace connector::configuration::properties
