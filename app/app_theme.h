#pragma once
// AppTheme: the four colour themes and their fixed palettes. Every surface of the window takes
// its colours from the palette of the current theme (see ThemeManager).

#include <QColor>
#include <QString>
#include <array>
#include <optional>

namespace sondrel {

/// The four themes, in the order the theme screen shows them.
enum class AppTheme : unsigned char { obsidian, forest, ocean, aurora };

/// The colour roles of one theme. All colours are sRGB; some carry an opacity.
struct ThemePalette {
    QColor background;      ///< the window and sheet background behind everything
    QColor cardBackground;  ///< fill of cards, panels, tiles and canvases
    QColor border;          ///< stroke around cards and panels, separators
    QColor accent;          ///< primary highlight: selection, prominent buttons, icons, progress
    QColor secondaryAccent; ///< second highlight, beside accent in gradients
    QColor textPrimary;     ///< body text on background and cards
    QColor textSecondary;   ///< dimmer text: subtitles, captions, descriptions
};

/// All themes in declaration order: obsidian, forest, ocean, aurora.
constexpr std::array<AppTheme, 4> allAppThemes() {
    return {AppTheme::obsidian, AppTheme::forest, AppTheme::ocean, AppTheme::aurora};
}

/// The display name, which is also the theme's identity and the persisted value
/// ("Obsidian Dark", "Forest Emerald", "Deep Ocean", "Aurora Borealis").
QString displayName(AppTheme theme);

/// The one-sentence description shown on the theme's card.
QString themeDescription(AppTheme theme);

/// The fixed palette of `theme`.
const ThemePalette& palette(AppTheme theme);

/// The theme whose display name equals `name` exactly (case-sensitive); nothing otherwise.
std::optional<AppTheme> appThemeFromName(const QString& name);

} // namespace sondrel
