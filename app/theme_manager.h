#pragma once
// ThemeManager: the holder of the chosen colour theme that every page reads (as `theme` in QML).
// The choice persists in QSettings (organization and application "Sondrel") under the key
// "selectedTheme"; an absent, unknown or differently cased stored name means "Obsidian Dark",
// and such a stored value is left as it is until the user picks a theme.
//
// Threading: GUI thread only. One instance is created by AppRoot and lives as long as it.

#include "app/app_theme.h"

#include <QColor>
#include <QObject>
#include <QString>
#include <QVariantList>

namespace sondrel {

class ThemeManager : public QObject {
    Q_OBJECT
    /// The chosen theme's display name as stored (may be a name no theme has). Writing stores
    /// the value, then announces the change so every view recolours at once.
    Q_PROPERTY(QString currentThemeName READ currentThemeName WRITE setCurrentThemeName NOTIFY
                   currentThemeNameChanged)
    /// Display name of the theme actually in use (the fallback for an unknown stored name).
    Q_PROPERTY(QString currentDisplayName READ currentDisplayName NOTIFY currentThemeNameChanged)
    Q_PROPERTY(QColor background READ background NOTIFY currentThemeNameChanged)
    Q_PROPERTY(QColor cardBackground READ cardBackground NOTIFY currentThemeNameChanged)
    Q_PROPERTY(QColor border READ border NOTIFY currentThemeNameChanged)
    Q_PROPERTY(QColor accent READ accent NOTIFY currentThemeNameChanged)
    Q_PROPERTY(QColor secondaryAccent READ secondaryAccent NOTIFY currentThemeNameChanged)
    Q_PROPERTY(QColor textPrimary READ textPrimary NOTIFY currentThemeNameChanged)
    Q_PROPERTY(QColor textSecondary READ textSecondary NOTIFY currentThemeNameChanged)

public:
    /// Name used when nothing (or nothing known) is stored.
    static constexpr const char* kDefaultThemeName = "Obsidian Dark";
    /// The settings key of the persisted choice.
    static constexpr const char* kSettingsKey = "selectedTheme";

    /// Reads the stored choice from QSettings("Sondrel", "Sondrel").
    explicit ThemeManager(QObject* parent = nullptr);

    const QString& currentThemeName() const { return m_currentThemeName; }
    /// Stores `name` under "selectedTheme" (even when no theme has that name) and emits
    /// currentThemeNameChanged when it differs from the current value.
    void setCurrentThemeName(const QString& name);

    /// The theme in use: the one named by currentThemeName, else obsidian.
    AppTheme current() const;
    QString currentDisplayName() const { return displayName(current()); }

    QColor background() const { return palette(current()).background; }
    QColor cardBackground() const { return palette(current()).cardBackground; }
    QColor border() const { return palette(current()).border; }
    QColor accent() const { return palette(current()).accent; }
    QColor secondaryAccent() const { return palette(current()).secondaryAccent; }
    QColor textPrimary() const { return palette(current()).textPrimary; }
    QColor textSecondary() const { return palette(current()).textSecondary; }

    /// The four themes for the selector, in order. Each entry is a map with "name",
    /// "description", "background", "cardBackground", "border", "accent", "secondaryAccent".
    Q_INVOKABLE QVariantList themes() const;

signals:
    void currentThemeNameChanged();

private:
    QString m_currentThemeName;
};

} // namespace sondrel
