#include "ui/src/theme_palette.h"

#include "app/theme_manager.h"

#include <QApplication>
#include <QGuiApplication>

namespace sondrel {

namespace {

// `over` laid on the opaque `under` (themes give translucent card and border colours).
QColor blended(const QColor& under, const QColor& over) {
    const double a = over.alphaF();
    return QColor::fromRgbF(static_cast<float>(under.redF() * (1 - a) + over.redF() * a),
                            static_cast<float>(under.greenF() * (1 - a) + over.greenF() * a),
                            static_cast<float>(under.blueF() * (1 - a) + over.blueF() * a));
}

} // namespace

QPalette themePalette(const ThemeManager& themes) {
    QColor background = themes.background();
    background.setAlphaF(1.0);
    const QColor card = blended(background, themes.cardBackground());
    const QColor border = blended(background, themes.border());
    const QColor text = blended(background, themes.textPrimary());
    const QColor secondary = blended(background, themes.textSecondary());

    QPalette palette;
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
        palette.setColor(group, QPalette::Window, background);
        palette.setColor(group, QPalette::Base, card);
        palette.setColor(group, QPalette::AlternateBase, blended(card, themes.cardBackground()));
        palette.setColor(group, QPalette::Button, card);
        palette.setColor(group, QPalette::WindowText, text);
        palette.setColor(group, QPalette::Text, text);
        palette.setColor(group, QPalette::ButtonText, text);
        palette.setColor(group, QPalette::BrightText, text);
        palette.setColor(group, QPalette::PlaceholderText, secondary);
        palette.setColor(group, QPalette::ToolTipBase, card);
        palette.setColor(group, QPalette::ToolTipText, text);
        palette.setColor(group, QPalette::Highlight, themes.accent());
        palette.setColor(group, QPalette::HighlightedText, Qt::white);
        palette.setColor(group, QPalette::Link, themes.accent());
        palette.setColor(group, QPalette::LinkVisited, themes.secondaryAccent());
        palette.setColor(group, QPalette::Light, blended(border, themes.border()));
        palette.setColor(group, QPalette::Midlight, border);
        palette.setColor(group, QPalette::Mid, border);
        palette.setColor(group, QPalette::Dark, background.darker(130));
        palette.setColor(group, QPalette::Shadow, background.darker(200));
    }
    palette.setColor(QPalette::Disabled, QPalette::Window, background);
    palette.setColor(QPalette::Disabled, QPalette::Base, background);
    palette.setColor(QPalette::Disabled, QPalette::Button, card);
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::PlaceholderText}) {
        palette.setColor(QPalette::Disabled, role, secondary);
    }
    palette.setColor(QPalette::Disabled, QPalette::Highlight, border);
    palette.setColor(QPalette::Disabled, QPalette::HighlightedText, secondary);
    return palette;
}

void followThemePalette(ThemeManager* themes) {
    const auto apply = [themes] {
        const QPalette palette = themePalette(*themes);
        QGuiApplication::setPalette(palette);
        // Widgets (the About and Help panels) keep their own palette copy.
        if (qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr) {
            QApplication::setPalette(palette);
        }
    };
    apply();
    QObject::connect(themes, &ThemeManager::currentThemeNameChanged, themes, apply);
}

} // namespace sondrel
