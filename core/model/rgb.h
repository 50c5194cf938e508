#pragma once
// A plain sRGB colour with components in 0..1 and full opacity; the core has no GUI colour type.

namespace sondrel {

/// sRGB colour, each component 0..1. Converted to QColor only in the app and ui layers.
struct Rgb {
    double red = 0.0;
    double green = 0.0;
    double blue = 0.0;

    friend bool operator==(const Rgb&, const Rgb&) = default;
};

} // namespace sondrel
