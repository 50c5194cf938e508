#include "app/disk_scanner.h"

#include "app/qt_conversions.h"

#include <fcntl.h>
#include <unistd.h>

namespace sondrel {

DiskScanner::DiskScanner(QObject* parent) : QObject(parent) {}

DiskScanner::~DiskScanner() {
    if (m_cancel) {
        m_cancel->store(true);
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

void DiskScanner::scanPath(const std::string& /*directory*/, int /*maxDepth*/) {
    // The walk is wired in by the core scanner.
}

void DiskScanner::cancel() {
    if (m_cancel) {
        m_cancel->store(true);
    }
}

bool DiskScanner::isPathAccessibleAndReadable(const QString& path) {
    const std::string bytes = toPathBytes(path);
    return access(bytes.c_str(), R_OK) == 0;
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
