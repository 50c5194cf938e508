#include "app/disk_scanner.h"

#include "app/qt_conversions.h"
#include "core/scan/scan_texts.h"

namespace sondrel {

DiskScanner::DiskScanner(QObject* parent) : QObject(parent) {
    connect(&m_job, &BackgroundJob::busyChanged, this, &DiskScanner::isScanningChanged);
}

DiskScanner::~DiskScanner() = default;

void DiskScanner::scan(const QString& directory, int maxDepth) {
    scanPath(toPathBytes(directory), maxDepth);
}

void DiskScanner::scanPath(const std::string& directory, int maxDepth) {
    if (m_job.isBusy()) {
        return;
    }
    const std::string name = scanTargetName(directory);
    if (!sondrel::isPathAccessibleAndReadable(directory)) {
        clearRootItem();
        setProgress(0, 0);
        setCurrentPath({});
        setProgressText(QString::fromStdString(accessDeniedText(name)));
        setAccessDenied(true);
        return;
    }

    setAccessDenied(false);
    m_job.start(
        [this, directory, maxDepth](const JobContext& job) {
            ScanOptions options;
            options.maxDepth = maxDepth;
            // Sizes on disk first: the storage views show them unless the user switches.
            options.measure = SizeMeasure::allocated;
            options.onProgress = [this, &job](const ScanProgress& progress) {
                job.post([this, progress] { applyProgress(progress); });
            };
            return scanTree(directory, options, job.cancelToken());
        },
        [this, name](const ScanResult& result) { finishScan(name, result); });
    setProgress(0, 0);
    setProgressText(QString::fromStdString(scanStartText(name)));
    setCurrentPath(toDisplayQString(directory));
}

void DiskScanner::applyProgress(const ScanProgress& progress) {
    setProgress(progress.items, progress.bytes);
    setCurrentPath(toDisplayQString(progress.currentPath));
    setProgressText(QString::fromStdString(scanProgressText(progress.items, progress.bytes)));
}

void DiskScanner::finishScan(const std::string& targetName, const ScanResult& result) {
    if (result.accessDenied) {
        // The target became unreadable between the test and the walk.
        setProgress(0, 0);
        setCurrentPath({});
        setProgressText(QString::fromStdString(accessDeniedText(targetName)));
        setAccessDenied(true);
        clearRootItem();
        return;
    }
    m_rootItem = result.rootItem();
    emit rootItemChanged();
    setProgress(result.items, result.bytes);
    setProgressText(
        QString::fromStdString(scanSummaryText(result.items, result.bytes, result.elapsedSeconds)));
    setCurrentPath({});
    emit scanFinished();
}

void DiskScanner::cancel() {
    if (m_job.cancel()) {
        setProgressText(QString::fromStdString(std::string(kScanCancelledText)));
    }
}

bool DiskScanner::isPathAccessibleAndReadable(const QString& path) {
    return sondrel::isPathAccessibleAndReadable(toPathBytes(path));
}

void DiskScanner::clearRootItem() {
    if (m_rootItem) {
        m_rootItem = {};
        emit rootItemChanged();
    }
}

void DiskScanner::setProgressText(const QString& text) {
    if (m_progressText != text) {
        m_progressText = text;
        emit progressTextChanged();
    }
}

void DiskScanner::setCurrentPath(const QString& path) {
    if (m_currentPath != path) {
        m_currentPath = path;
        emit currentPathChanged();
    }
}

void DiskScanner::setProgress(qint64 count, qint64 bytes) {
    if (m_scannedCount != count || m_scannedBytes != bytes) {
        m_scannedCount = count;
        m_scannedBytes = bytes;
        emit progressChanged();
    }
}

void DiskScanner::setAccessDenied(bool denied) {
    if (m_accessDenied != denied) {
        m_accessDenied = denied;
        emit accessDeniedChanged();
    }
}

} // namespace sondrel
