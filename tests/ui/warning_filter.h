#pragma once
// The warnings a UI test fails on: every warning, except two that Qt 6.4 itself prints and that
// say nothing about our pages, both seen only under the slow sanitizer builds:
// - "QUnifiedTimer::stopAnimationDriver: driver is not running": a stopped animation's timer
//   races the animation driver's own stop;
// - "DelegateModel::cancel: index out range": a list view releases a delegate that is still being
//   created after a filter has shrunk its model, and Qt checks the delegate's old row against the
//   new row count before it drops the creation anyway.

#include <QRegularExpression>

namespace sondrel::test {

inline QRegularExpression anyWarning() {
    return QRegularExpression(
        QStringLiteral("^(?!QUnifiedTimer::stopAnimationDriver: driver is not running|"
                       "DelegateModel::cancel: index out range).*"));
}

} // namespace sondrel::test
