#pragma once
// The string values of a bundle's Info.plist in the XML property-list format: enough to read a
// bundle's identifier and version. A binary property list is not read (its callers fall back).

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace sondrel {

/// The top-level dictionary's keys whose values are <string> elements, entities decoded. Nothing
/// for a text that is not an XML property list with a top-level <dict> (a binary "bplist" gives
/// nothing). Values of other types and nested dictionaries are skipped. Never throws.
std::optional<std::map<std::string, std::string>> parseInfoPlistStrings(std::string_view text);

} // namespace sondrel
