#pragma once
// Conversions between the core's plain values (byte-string paths, sRGB colours) and Qt types.
// Paths go to QString only for display or for Qt APIs; a path that is not valid UTF-8 must be
// kept as bytes (fromDisplayPath is lossy for such names, pathBytes is not).

#include "core/model/rgb.h"

#include <QByteArray>
#include <QColor>
#include <QString>
#include <string>
#include <string_view>

namespace sondrel {

/// Display text of a byte path: invalid UTF-8 bytes become U+FFFD. For labels only.
QString toDisplayQString(std::string_view bytes);

/// A local path as Qt stores file names (QFile::decodeName), which round-trips through
/// QFile::encodeName even for names that are not valid UTF-8.
QString toFileQString(std::string_view bytes);

/// The bytes of a path that came from Qt (QFile::encodeName), the inverse of toFileQString.
std::string toPathBytes(const QString& path);

/// QColor of a core colour (full opacity).
QColor toQColor(const Rgb& rgb);

} // namespace sondrel
