#pragma once
// The application palette drawn from the current theme, so that what Qt draws itself (the
// folder panels, the About and Help panels, menus and tooltips) matches the pages.
//
// Threading: GUI thread only.

#include <QPalette>

namespace sondrel {

class ThemeManager;

/// The palette of the theme `themes` currently holds: window and base in the background
/// colour, buttons in the card colour laid over it, texts in the primary text colour (the
/// secondary one when disabled and for placeholders), selection in the accent colour.
QPalette themePalette(const ThemeManager& themes);

/// Sets the application palette from `themes` now and whenever its theme changes, for as long
/// as `themes` lives.
void followThemePalette(ThemeManager* themes);

} // namespace sondrel
