#include "app/disk_scanner.h"

#include "app/qt_conversions.h"
#include "core/scan/scan_texts.h"

#include <QMetaObject>

namespace sondrel {

DiskScanner::DiskScanner(QObject* parent) : QObject(parent) {}

DiskScanner::~DiskScanner() {
    if (m_cancel) {
        m_cancel->cancel();
    }
    joinWorker();
}

void DiskScanner::joinWorker() {
    if (m_worker.joinable()) {
        m_worker.join();
    }
}

void DiskScanner::scan(const QString& directory, int maxDepth) {
    scanPath(toPathBytes(directory), maxDepth);
}

void DiskScanner::scanPath(const std::string& directory, int maxDepth) {
    if (m_isScanning) {
        return;
    }
    const std::string name = scanTargetName(directory);
    if (!sondrel::isPathAccessibleAndReadable(directory)) {
        setScanning(false);
        if (m_rootItem) {
            m_rootItem = {};
            emit rootItemChanged();
        }
        setProgress(0, 0);
        setCurrentPath({});
        setProgressText(QString::fromStdString(accessDeniedText(name)));
        setAccessDenied(true);
        return;
    }

    // A cancelled walk may still be finishing; it stops at its next check. Its result belongs
    // to an older generation and is dropped when it arrives.
    joinWorker();
    const std::uint64_t generation = ++m_generation;
    m_targetName = name;
    m_cancel = std::make_shared<CancelToken>();
    setAccessDenied(false);
    setScanning(true);
    setProgress(0, 0);
    setProgressText(QString::fromStdString(scanStartText(name)));
    setCurrentPath(toDisplayQString(directory));

    m_worker = std::thread([this, generation, cancel = m_cancel, directory, maxDepth] {
        ScanOptions options;
        options.maxDepth = maxDepth;
        options.onProgress = [this, generation](const ScanProgress& progress) {
            QMetaObject::invokeMethod(
                this, [this, generation, progress] { applyProgress(generation, progress); },
                Qt::QueuedConnection);
        };
        auto result = std::make_shared<const ScanResult>(scanTree(directory, options, *cancel));
        QMetaObject::invokeMethod(
            this, [this, generation, result] { finishScan(generation, *result); },
            Qt::QueuedConnection);
    });
}

void DiskScanner::applyProgress(std::uint64_t generation, const ScanProgress& progress) {
    if (generation != m_generation || !m_isScanning) {
        return; // an older scan, or a cancelled one whose summary is still to come
    }
    setProgress(progress.items, progress.bytes);
    setCurrentPath(toDisplayQString(progress.currentPath));
    setProgressText(QString::fromStdString(scanProgressText(progress.items, progress.bytes)));
}

void DiskScanner::finishScan(std::uint64_t generation, const ScanResult& result) {
    if (generation != m_generation) {
        return;
    }
    joinWorker(); // the worker's last act was posting this call
    if (result.accessDenied) {
        // The target became unreadable between the test and the walk.
        setScanning(false);
        setProgress(0, 0);
        setCurrentPath({});
        setProgressText(QString::fromStdString(accessDeniedText(m_targetName)));
        setAccessDenied(true);
        if (m_rootItem) {
            m_rootItem = {};
            emit rootItemChanged();
        }
        return;
    }
    m_rootItem = result.rootItem();
    emit rootItemChanged();
    setProgress(result.items, result.bytes);
    setScanning(false);
    setProgressText(
        QString::fromStdString(scanSummaryText(result.items, result.bytes, result.elapsedSeconds)));
    setCurrentPath({});
    emit scanFinished();
}

void DiskScanner::cancel() {
    if (!m_isScanning) {
        return;
    }
    if (m_cancel) {
        m_cancel->cancel();
    }
    setScanning(false);
    setProgressText(QString::fromStdString(std::string(kScanCancelledText)));
}

bool DiskScanner::isPathAccessibleAndReadable(const QString& path) {
    return sondrel::isPathAccessibleAndReadable(toPathBytes(path));
}

void DiskScanner::setScanning(bool scanning) {
    if (m_isScanning != scanning) {
        m_isScanning = scanning;
        emit isScanningChanged();
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
