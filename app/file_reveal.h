#pragma once
// Shows a file or folder in the desktop's file manager, and puts a path on the clipboard.

#include <QString>

namespace sondrel {

/// Asks the file manager to show `path` selected in its folder, through the freedesktop.org
/// D-Bus interface org.freedesktop.FileManager1.ShowItems; when no file manager answers, opens
/// the parent folder with the desktop's default handler. Returns false when neither worked.
/// GUI thread only; the D-Bus call blocks for at most a short timeout.
bool revealInFileManager(const QString& path);

/// Puts `text` on the general clipboard as plain text. GUI thread only.
void copyTextToClipboard(const QString& text);

} // namespace sondrel
