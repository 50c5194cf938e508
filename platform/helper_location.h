#pragma once
// Where the privileged removal helper is installed.

#include <string>

namespace sondrel {

/// The absolute path of the installed sondrel-helper (<prefix>/libexec/sondrel/sondrel-helper
/// for the prefix the build was configured with), the program the helper's polkit policy names
/// and pkexec runs. Fixed at build time and never read from the environment, so the
/// administrator step cannot be pointed at another program. The file may be absent when the
/// program runs from its build folder.
std::string installedHelperPath();

} // namespace sondrel
