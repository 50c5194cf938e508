#pragma once
// Icons named by symbol names ("trash.fill", "square.grid.2x2.fill"). The table
// assets/icons/symbols.tsv maps each name to one SVG file of the vendored icon set; this class
// reads it once and renders an icon tinted in one colour.
//
// QML uses the image provider: Image { source: "image://symbol/trash.fill/ff3359" } (name,
// then the colour as 6 or 8 hex digits, AARRGGBB for 8). The Icon component builds that URL.

#include <QColor>
#include <QHash>
#include <QImage>
#include <QQuickImageProvider>
#include <QSize>
#include <QString>
#include <QStringList>

namespace sondrel {

/// The symbol table. Thread-safe after construction (read-only); use instance().
class SymbolIcons {
public:
    /// The table read from the application's resources (built once, on first use).
    static const SymbolIcons& instance();

    /// Resource path of the SVG for `symbol` (":/sondrel/icons/<file>"), or "" when unknown.
    QString filePath(const QString& symbol) const;
    /// Every symbol name of the table, sorted.
    QStringList symbols() const;
    /// `symbol` drawn at `size` in `color` (transparent background). An unknown symbol draws
    /// "questionmark.circle.fill" when that exists, else an empty image.
    QImage render(const QString& symbol, const QSize& size, const QColor& color) const;

private:
    SymbolIcons();
    QHash<QString, QString> m_files;
};

/// "image://symbol/NAME/COLOR" provider over SymbolIcons. Runs on the scene graph's image
/// loading threads; it only reads the table and renders.
class SymbolImageProvider : public QQuickImageProvider {
public:
    SymbolImageProvider();
    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;
};

} // namespace sondrel
