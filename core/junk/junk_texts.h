#pragma once
// Short texts about junk items shared by the page and the command line.

#include <cstdint>
#include <string>

namespace sondrel {

/// How long ago an item was last modified, for judging whether it is still used: "last used
/// today", "last used yesterday", "last used 5 days ago", "last used 3 weeks ago", "last used
/// 3 months ago", "last used 2 years ago". `modifiedSeconds` 0 (unknown) gives "". A time in
/// the future reads "last used today". Pure.
std::string junkLastUsedText(std::int64_t modifiedSeconds, std::int64_t nowSeconds);

} // namespace sondrel
