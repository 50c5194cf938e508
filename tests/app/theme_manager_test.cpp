// ThemeManager: stored name lookup and fallback, persistence of a pick, change announcements,
// exact palettes and the selector's list.

#include "app/theme_manager.h"

#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <optional>

namespace sondrel {
namespace {

QSettings userSettings() {
    return QSettings(QStringLiteral("Sondrel"), QStringLiteral("Sondrel"));
}

void storeThemeName(const std::optional<QString>& name) {
    QSettings settings = userSettings();
    if (name) {
        settings.setValue(ThemeManager::kSettingsKey, *name);
    } else {
        settings.remove(ThemeManager::kSettingsKey);
    }
    settings.sync();
}

bool sameColour(const QColor& actual, double r, double g, double b, double a) {
    constexpr double kTolerance = 1.0 / 255.0;
    return qAbs(actual.redF() - r) <= kTolerance && qAbs(actual.greenF() - g) <= kTolerance &&
           qAbs(actual.blueF() - b) <= kTolerance && qAbs(actual.alphaF() - a) <= kTolerance;
}

} // namespace

class ThemeManagerTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_settingsDir;

private slots:
    void initTestCase() {
        QVERIFY(m_settingsDir.isValid());
        // Every QSettings of this process lives in the test's own folder.
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_settingsDir.path());
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_settingsDir.path());
        QVERIFY(userSettings().fileName().startsWith(m_settingsDir.path()));
    }

    void storedNameSelectsTheme_data() {
        QTest::addColumn<std::optional<QString>>("stored");
        QTest::addColumn<QString>("expected");
        QTest::newRow("no key") << std::optional<QString>() << "Obsidian Dark";
        QTest::newRow("exact obsidian")
            << std::optional<QString>("Obsidian Dark") << "Obsidian Dark";
        QTest::newRow("exact forest")
            << std::optional<QString>("Forest Emerald") << "Forest Emerald";
        QTest::newRow("exact ocean") << std::optional<QString>("Deep Ocean") << "Deep Ocean";
        QTest::newRow("exact aurora")
            << std::optional<QString>("Aurora Borealis") << "Aurora Borealis";
        QTest::newRow("lower case") << std::optional<QString>("deep ocean") << "Obsidian Dark";
        QTest::newRow("upper case") << std::optional<QString>("AURORA BOREALIS") << "Obsidian Dark";
        QTest::newRow("trailing space") << std::optional<QString>("Deep Ocean ") << "Obsidian Dark";
        QTest::newRow("unknown") << std::optional<QString>("Solarized") << "Obsidian Dark";
        QTest::newRow("empty") << std::optional<QString>(QString()) << "Obsidian Dark";
    }

    void storedNameSelectsTheme() {
        QFETCH(std::optional<QString>, stored);
        QFETCH(QString, expected);
        storeThemeName(stored);

        ThemeManager manager;
        QCOMPARE(manager.currentDisplayName(), expected);
        QCOMPARE(manager.background(), palette(*appThemeFromName(expected)).background);
        // A stale stored name is kept as it is until the user picks a theme.
        if (stored) {
            QCOMPARE(manager.currentThemeName(), *stored);
            QCOMPARE(userSettings().value(ThemeManager::kSettingsKey).toString(), *stored);
        } else {
            QVERIFY(!userSettings().contains(ThemeManager::kSettingsKey));
        }
    }

    void pickingAThemeStoresItAndAnnouncesOnce() {
        storeThemeName(std::nullopt);
        ThemeManager manager;
        QSignalSpy changed(&manager, &ThemeManager::currentThemeNameChanged);

        manager.setCurrentThemeName(QStringLiteral("Deep Ocean"));
        QCOMPARE(changed.count(), 1);
        QCOMPARE(userSettings().value(ThemeManager::kSettingsKey).toString(),
                 QStringLiteral("Deep Ocean"));
        QCOMPARE(manager.accent(), palette(AppTheme::ocean).accent);

        manager.setCurrentThemeName(QStringLiteral("Deep Ocean"));
        QCOMPARE(changed.count(), 1);

        // The next launch restores the pick.
        ThemeManager relaunched;
        QCOMPARE(relaunched.current(), AppTheme::ocean);
    }

    void palettesAreExact() {
        const ThemePalette& obsidian = palette(AppTheme::obsidian);
        QVERIFY(sameColour(obsidian.background, 0.05, 0.05, 0.07, 1));
        QVERIFY(sameColour(obsidian.cardBackground, 1, 1, 1, 0.04));
        QVERIFY(sameColour(obsidian.border, 1, 1, 1, 0.08));
        QVERIFY(sameColour(obsidian.accent, 1.0, 0.2, 0.35, 1));
        QVERIFY(sameColour(obsidian.secondaryAccent, 1.0, 0.45, 0.2, 1));
        const ThemePalette& forest = palette(AppTheme::forest);
        QVERIFY(sameColour(forest.background, 0.04, 0.08, 0.06, 1));
        QVERIFY(sameColour(forest.cardBackground, 0.07, 0.16, 0.11, 0.4));
        QVERIFY(sameColour(forest.border, 0.2, 0.6, 0.4, 0.25));
        QVERIFY(sameColour(forest.accent, 0.18, 0.82, 0.48, 1));
        QVERIFY(sameColour(forest.secondaryAccent, 0.4, 0.9, 0.6, 1));
        const ThemePalette& ocean = palette(AppTheme::ocean);
        QVERIFY(sameColour(ocean.background, 0.04, 0.07, 0.12, 1));
        QVERIFY(sameColour(ocean.cardBackground, 0.08, 0.14, 0.24, 0.4));
        QVERIFY(sameColour(ocean.border, 0.2, 0.5, 0.9, 0.25));
        QVERIFY(sameColour(ocean.accent, 0.24, 0.64, 1.0, 1));
        QVERIFY(sameColour(ocean.secondaryAccent, 0.1, 0.85, 0.85, 1));
        const ThemePalette& aurora = palette(AppTheme::aurora);
        QVERIFY(sameColour(aurora.background, 0.08, 0.04, 0.10, 1));
        QVERIFY(sameColour(aurora.cardBackground, 0.16, 0.08, 0.20, 0.4));
        QVERIFY(sameColour(aurora.border, 0.7, 0.3, 0.8, 0.25));
        QVERIFY(sameColour(aurora.accent, 0.85, 0.35, 0.95, 1));
        QVERIFY(sameColour(aurora.secondaryAccent, 0.55, 0.4, 0.98, 1));
    }

    void selectorListsThemesInOrder() {
        ThemeManager manager;
        const QVariantList themes = manager.themes();
        QStringList names;
        for (const QVariant& entry : themes) {
            names << entry.toMap().value(QStringLiteral("name")).toString();
        }
        QCOMPARE(names,
                 (QStringList{"Obsidian Dark", "Forest Emerald", "Deep Ocean", "Aurora Borealis"}));
        QCOMPARE(themes.at(3).toMap().value(QStringLiteral("accent")).value<QColor>(),
                 palette(AppTheme::aurora).accent);
    }
};

} // namespace sondrel

QTEST_GUILESS_MAIN(sondrel::ThemeManagerTest)
#include "theme_manager_test.moc"
