#pragma once
// Contact and web addresses shown by the About and Help panels, the help menu, the tray menu
// and the theme screen. They are defined here and nowhere else.

namespace sondrel::config {

/// The support e-mail address (used as a mailto: URL).
inline constexpr const char* kSupportEmail = "support@sondrel.app";
/// The online user guides.
inline constexpr const char* kGuidesUrl = "https://sondrel.app/guides";
/// The product website.
inline constexpr const char* kWebsiteUrl = "https://sondrel.app";

} // namespace sondrel::config
