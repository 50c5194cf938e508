#include "app/file_reveal.h"

#include <QClipboard>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDesktopServices>
#include <QFileInfo>
#include <QGuiApplication>
#include <QUrl>

namespace sondrel {

namespace {

constexpr int kDBusTimeoutMs = 2000;

} // namespace

bool revealInFileManager(const QString& path) {
    if (path.isEmpty()) {
        return false;
    }
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (bus.isConnected()) {
        QDBusMessage call = QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.FileManager1"),
            QStringLiteral("/org/freedesktop/FileManager1"),
            QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
        call << QStringList{QUrl::fromLocalFile(path).toString()} << QString();
        const QDBusMessage reply = bus.call(call, QDBus::Block, kDBusTimeoutMs);
        if (reply.type() == QDBusMessage::ReplyMessage) {
            return true;
        }
    }
    return QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(path).absolutePath()));
}

void copyTextToClipboard(const QString& text) {
    if (QClipboard* clipboard = QGuiApplication::clipboard()) {
        clipboard->setText(text);
    }
}

} // namespace sondrel
