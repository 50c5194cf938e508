#pragma once
// QmlSection: the QML name `Section` of the window's sections, so that QML writes
// `appRoot.selectedSection = Section.Uninstaller` instead of a number. It only carries the
// enumerators of NavigationSection::Id (the section table lives in app/navigation_section.h);
// nothing creates it.

#include "app/navigation_section.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace sondrel {

class QmlSection : public QObject {
    Q_OBJECT
    QML_NAMED_ELEMENT(Section)
    QML_UNCREATABLE("Section only names the window's sections.")
    QML_EXTENDED_NAMESPACE(sondrel::NavigationSection)
};

} // namespace sondrel
