#pragma once
// DiskScanner: the storage section's engine. It walks one chosen folder into a FileItem tree
// (core/scan does the walk) and publishes the progress and the finished tree to QML.
//
// Threading: every method and property belongs to the GUI thread. The walk runs as this
// object's BackgroundJob; the worker never touches a property, it posts to the GUI thread, so
// properties are written there only. Progress comes from the walk's atomic counters, at most once
// every 0.08 s.
//
// Lifecycle: Idle -> scan() -> Scanning -> finished (Idle, new rootItem). cancel() returns the
// interface to Idle at once ("Scan cancelled"); the worker stops at its next check and still
// publishes the partial tree and the closing summary. A scan request while isScanning is true
// is ignored. The object may be destroyed during a scan: the job cancels and joins the worker,
// and nothing is published afterwards.

#include "app/background_job.h"
#include "core/model/file_item.h"
#include "core/scan/tree_scan.h"
#include "core/util/cancel_token.h"

#include <QObject>
#include <QString>
#include <QtGlobal>
#include <string>

namespace sondrel {

class DiskScanner : public QObject {
    Q_OBJECT
    /// True while a scan runs (false again at once after cancel()).
    Q_PROPERTY(bool isScanning READ isScanning NOTIFY isScanningChanged)
    /// One-line status: "Fast scanning NAME...", "Scanning: N items (SIZE)", "Scan cancelled",
    /// the closing summary, or the permission refusal.
    Q_PROPERTY(QString progressText READ progressText NOTIFY progressTextChanged)
    /// Path of the item most recently reported (display text); "" when idle.
    Q_PROPERTY(QString currentPath READ currentPath NOTIFY currentPathChanged)
    /// Progress counter of items (reports: one per file and collapsed folder, three per bundle).
    Q_PROPERTY(qint64 scannedCount READ scannedCount NOTIFY progressChanged)
    /// Progress counter of bytes.
    Q_PROPERTY(qint64 scannedBytes READ scannedBytes NOTIFY progressChanged)
    /// True when a finished tree is published (rootItem() is not null).
    Q_PROPERTY(bool hasRootItem READ hasRootItem NOTIFY rootItemChanged)
    /// True after a scan was refused with the permission message; false once a scan starts.
    Q_PROPERTY(bool accessDenied READ accessDenied NOTIFY accessDeniedChanged)

public:
    /// Default depth of a scan: folders 1..4 levels below the root are expanded.
    static constexpr int kDefaultMaxDepth = 4;

    explicit DiskScanner(QObject* parent = nullptr);
    /// Cancels a running scan and waits for its worker (which stops at its next check).
    ~DiskScanner() override;
    DiskScanner(const DiskScanner&) = delete;
    DiskScanner& operator=(const DiskScanner&) = delete;

    bool isScanning() const { return m_job.isBusy(); }
    const QString& progressText() const { return m_progressText; }
    const QString& currentPath() const { return m_currentPath; }
    qint64 scannedCount() const { return m_scannedCount; }
    qint64 scannedBytes() const { return m_scannedBytes; }
    bool hasRootItem() const { return static_cast<bool>(m_rootItem); }
    bool accessDenied() const { return m_accessDenied; }

    /// The finished tree of the last completed (or cancelled) scan; a null item before the
    /// first one and after a refused scan. The handle keeps its tree alive.
    FileItem rootItem() const { return m_rootItem; }

    /// Starts scanning `directory` (a local path as Qt stores file names; bytes are recovered
    /// with toPathBytes) down to `maxDepth` levels. Returns at once. Ignored while isScanning.
    /// An unreadable target sets the refusal text "Access not allowed for 'NAME'. Permission
    /// was denied.", clears rootItem and the counters, and starts nothing.
    Q_INVOKABLE void scan(const QString& directory, int maxDepth = kDefaultMaxDepth);
    /// Same as scan() for a path given as bytes (names need not be valid UTF-8).
    void scanPath(const std::string& directory, int maxDepth = kDefaultMaxDepth);
    /// Requests the end of the running scan: isScanning false and "Scan cancelled" at once;
    /// the partial tree and the summary follow when the worker stops. No effect when idle.
    Q_INVOKABLE void cancel();

    /// True when something exists at `path` and can be read: a folder that can be opened for
    /// listing, or a file that can be opened for reading. Safe on any thread.
    static bool isPathAccessibleAndReadable(const QString& path);

signals:
    void isScanningChanged();
    void progressTextChanged();
    void currentPathChanged();
    void progressChanged();
    void rootItemChanged();
    void accessDeniedChanged();
    /// Emitted on the GUI thread after a scan's tree and summary were published (also after a
    /// cancelled scan, not after a refused one).
    void scanFinished();

private:
    void setProgressText(const QString& text);
    void setCurrentPath(const QString& path);
    void setProgress(qint64 count, qint64 bytes);
    void setAccessDenied(bool denied);
    // GUI thread: a progress report of the running scan arrived.
    void applyProgress(const ScanProgress& progress);
    // GUI thread: the scan of the folder shown as `targetName` ended with `result`.
    void finishScan(const std::string& targetName, const ScanResult& result);
    void clearRootItem();

    QString m_progressText;
    QString m_currentPath;
    qint64 m_scannedCount = 0;
    qint64 m_scannedBytes = 0;
    bool m_accessDenied = false;
    FileItem m_rootItem;
    // The walk; last, so that its worker is joined before the members above go away.
    BackgroundJob m_job;
};

} // namespace sondrel
