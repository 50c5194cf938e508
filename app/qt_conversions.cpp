#include "app/qt_conversions.h"

#include "core/util/path_text.h"

#include <QFile>

namespace sondrel {

QString toDisplayQString(std::string_view bytes) {
    const std::string text = toDisplayText(bytes);
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString toFileQString(std::string_view bytes) {
    return QFile::decodeName(QByteArray(bytes.data(), static_cast<qsizetype>(bytes.size())));
}

std::string toPathBytes(const QString& path) {
    const QByteArray bytes = QFile::encodeName(path);
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

QColor toQColor(const Rgb& rgb) {
    return QColor::fromRgbF(float(rgb.red), float(rgb.green), float(rgb.blue));
}

} // namespace sondrel
