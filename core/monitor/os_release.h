#pragma once
// The operating-system version text shown in the telemetry's system facts.

#include <string>
#include <string_view>

namespace sondrel {

/// The PRETTY_NAME value of an os-release text (quotes and backslash escapes removed), or ""
/// when absent. Pure; never throws.
std::string prettyNameFromOsRelease(std::string_view text);

/// "PRETTY_NAME, kernel RELEASE" ("Debian GNU/Linux 12 (bookworm), kernel 6.1.0-18-amd64");
/// "PRETTY_NAME" without a kernel release, "kernel RELEASE" without a pretty name, "" without
/// both.
std::string osVersionText(std::string_view prettyName, std::string_view kernelRelease);

} // namespace sondrel
