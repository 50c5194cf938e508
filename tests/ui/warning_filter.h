#pragma once
// The warnings a UI test fails on: every warning, except one that Qt 6.4 itself prints when a
// stopped animation's timer races the animation driver's own stop ("QUnifiedTimer::
// stopAnimationDriver: driver is not running"), seen under the slow sanitizer builds. It says
// nothing about our pages.

#include <QRegularExpression>

namespace sondrel::test {

inline QRegularExpression anyWarning() {
    return QRegularExpression(
        QStringLiteral("^(?!QUnifiedTimer::stopAnimationDriver: driver is not running).*"));
}

} // namespace sondrel::test
