#include "app/app_theme.h"

namespace sondrel {

namespace {

QColor rgba(double red, double green, double blue, double opacity = 1.0) {
    return QColor::fromRgbF(static_cast<float>(red), static_cast<float>(green),
                            static_cast<float>(blue), static_cast<float>(opacity));
}

// Text colours are not part of the themes' five roles; light greys read well on all four dark
// backgrounds, tinted slightly towards each theme's hue.
const std::array<ThemePalette, 4>& palettes() {
    static const std::array<ThemePalette, 4> table = {{
        {rgba(0.05, 0.05, 0.07), rgba(1, 1, 1, 0.04), rgba(1, 1, 1, 0.08), rgba(1.0, 0.2, 0.35),
         rgba(1.0, 0.45, 0.2), rgba(0.95, 0.95, 0.97), rgba(0.62, 0.62, 0.68)},
        {rgba(0.04, 0.08, 0.06), rgba(0.07, 0.16, 0.11, 0.4), rgba(0.2, 0.6, 0.4, 0.25),
         rgba(0.18, 0.82, 0.48), rgba(0.4, 0.9, 0.6), rgba(0.93, 0.97, 0.94),
         rgba(0.60, 0.70, 0.64)},
        {rgba(0.04, 0.07, 0.12), rgba(0.08, 0.14, 0.24, 0.4), rgba(0.2, 0.5, 0.9, 0.25),
         rgba(0.24, 0.64, 1.0), rgba(0.1, 0.85, 0.85), rgba(0.93, 0.96, 1.0),
         rgba(0.60, 0.67, 0.78)},
        {rgba(0.08, 0.04, 0.10), rgba(0.16, 0.08, 0.20, 0.4), rgba(0.7, 0.3, 0.8, 0.25),
         rgba(0.85, 0.35, 0.95), rgba(0.55, 0.4, 0.98), rgba(0.97, 0.93, 0.99),
         rgba(0.70, 0.62, 0.76)},
    }};
    return table;
}

} // namespace

QString displayName(AppTheme theme) {
    switch (theme) {
    case AppTheme::obsidian:
        return QStringLiteral("Obsidian Dark");
    case AppTheme::forest:
        return QStringLiteral("Forest Emerald");
    case AppTheme::ocean:
        return QStringLiteral("Deep Ocean");
    case AppTheme::aurora:
        return QStringLiteral("Aurora Borealis");
    }
    return QStringLiteral("Obsidian Dark");
}

QString themeDescription(AppTheme theme) {
    switch (theme) {
    case AppTheme::obsidian:
        return QStringLiteral("Classic Sondrel dark with coral red and fiery orange accents.");
    case AppTheme::forest:
        return QStringLiteral("Deep woodland greens with emerald neon and sage highlights.");
    case AppTheme::ocean:
        return QStringLiteral("Deep sapphire tones with cyan and electric blue indicators.");
    case AppTheme::aurora:
        return QStringLiteral("Midnight purple skies with vivid magenta and ultraviolet glow.");
    }
    return {};
}

const ThemePalette& palette(AppTheme theme) {
    return palettes().at(static_cast<std::size_t>(theme));
}

std::optional<AppTheme> appThemeFromName(const QString& name) {
    for (AppTheme theme : allAppThemes()) {
        if (displayName(theme).compare(name, Qt::CaseSensitive) == 0) {
            return theme;
        }
    }
    return std::nullopt;
}

} // namespace sondrel
