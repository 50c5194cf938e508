#include "ui/src/symbol_icons.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>
#include <QTextStream>
#include <algorithm>

namespace sondrel {

namespace {

constexpr int kDefaultIconSize = 32;

} // namespace

SymbolIcons::SymbolIcons() {
    QFile table(QStringLiteral(":/sondrel/icons/symbols.tsv"));
    if (!table.open(QIODevice::ReadOnly | QIODevice::Text)) {
        return;
    }
    QTextStream lines(&table);
    while (!lines.atEnd()) {
        const QString line = lines.readLine();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#'))) {
            continue;
        }
        const QStringList fields = line.split(QLatin1Char('\t'));
        if (fields.size() == 2) {
            m_files.insert(fields[0], QStringLiteral(":/sondrel/icons/") + fields[1]);
        }
    }
}

const SymbolIcons& SymbolIcons::instance() {
    static const SymbolIcons icons;
    return icons;
}

QString SymbolIcons::filePath(const QString& symbol) const {
    return m_files.value(symbol);
}

QStringList SymbolIcons::symbols() const {
    QStringList names = m_files.keys();
    std::sort(names.begin(), names.end());
    return names;
}

QImage SymbolIcons::render(const QString& symbol, const QSize& size, const QColor& color) const {
    QString file = filePath(symbol);
    if (file.isEmpty()) {
        file = filePath(QStringLiteral("questionmark.circle.fill"));
    }
    QImage image(size.isValid() && !size.isEmpty() ? size
                                                   : QSize(kDefaultIconSize, kDefaultIconSize),
                 QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QSvgRenderer renderer(file);
    if (file.isEmpty() || !renderer.isValid()) {
        return image;
    }
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter);
    // The SVGs are drawn in black; SourceIn keeps their shape and takes the colour.
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    return image;
}

SymbolImageProvider::SymbolImageProvider() : QQuickImageProvider(QQuickImageProvider::Image) {}

QImage SymbolImageProvider::requestImage(const QString& id, QSize* size,
                                         const QSize& requestedSize) {
    const qsizetype slash = id.lastIndexOf(QLatin1Char('/'));
    const QString name = slash < 0 ? id : id.left(slash);
    QColor color(Qt::white);
    if (slash >= 0) {
        const QColor parsed(QLatin1Char('#') + id.mid(slash + 1));
        if (parsed.isValid()) {
            color = parsed;
        }
    }
    const QImage image = SymbolIcons::instance().render(name, requestedSize, color);
    if (size != nullptr) {
        *size = image.size();
    }
    return image;
}

} // namespace sondrel
