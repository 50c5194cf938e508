#include "app/theme_manager.h"

#include <QSettings>
#include <QVariantMap>

namespace sondrel {

namespace {

QSettings appSettings() {
    return QSettings(QStringLiteral("Sondrel"), QStringLiteral("Sondrel"));
}

} // namespace

ThemeManager::ThemeManager(QObject* parent) : QObject(parent) {
    m_currentThemeName =
        appSettings().value(kSettingsKey, QString::fromLatin1(kDefaultThemeName)).toString();
}

void ThemeManager::setCurrentThemeName(const QString& name) {
    QSettings settings = appSettings();
    settings.setValue(kSettingsKey, name);
    settings.sync();
    if (name == m_currentThemeName) {
        return;
    }
    m_currentThemeName = name;
    emit currentThemeNameChanged();
}

AppTheme ThemeManager::current() const {
    return appThemeFromName(m_currentThemeName).value_or(AppTheme::obsidian);
}

QVariantList ThemeManager::themes() const {
    QVariantList list;
    for (AppTheme theme : allAppThemes()) {
        const ThemePalette& colours = palette(theme);
        list.append(QVariantMap{
            {QStringLiteral("name"), displayName(theme)},
            {QStringLiteral("description"), themeDescription(theme)},
            {QStringLiteral("background"), colours.background},
            {QStringLiteral("cardBackground"), colours.cardBackground},
            {QStringLiteral("border"), colours.border},
            {QStringLiteral("accent"), colours.accent},
            {QStringLiteral("secondaryAccent"), colours.secondaryAccent},
        });
    }
    return list;
}

} // namespace sondrel
