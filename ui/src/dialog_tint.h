#pragma once
// DialogTint (QML singleton `DialogTint`): repaints the parts of Qt's own file and folder panels
// that ignore the palette, so that they are readable in a dark theme.
//
// Workaround: the Basic style's folder path bar in Qt 6.4's Quick dialogs draws a plain white
// rectangle behind buttons whose text follows the palette (light in every theme here), so the
// path reads light grey on white. Nothing in the panel's API reaches that rectangle.
//
// Threading: GUI thread only.

#include <QColor>
#include <QObject>
#include <QtQml/qqmlregistration.h>

class QQuickItem;

namespace sondrel {

class DialogTint : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    using QObject::QObject;

    /// Fills the background of every folder path bar open in the window of `anyItem` with
    /// `fill`, outlined with `border`, and draws the arrows between its folders in `arrows`.
    /// Returns how many bars it repainted (0 when none is open or `anyItem` is in no window).
    Q_INVOKABLE static int tintPathBars(QQuickItem* anyItem, const QColor& fill,
                                        const QColor& border, const QColor& arrows);
};

} // namespace sondrel
