#include "app/duplicate_scanner.h"

#include "app/file_reveal.h"
#include "app/qt_conversions.h"
#include "core/duplicates/duplicate_finder.h"
#include "core/duplicates/duplicate_texts.h"
#include "core/duplicates/duplicate_trash.h"
#include "core/model/byte_format.h"
#include "core/model/platform_terms.h"
#include "platform/duplicate_folders.h"
#include "platform/locations.h"

#include <QFileInfo>
#include <QMetaObject>
#include <QVariantMap>
#include <unordered_set>

namespace sondrel {

namespace {

// What a scan's worker hands to the GUI thread.
struct ScanOutcome {
    DuplicateScanResult result;
    std::unordered_set<std::uint64_t> thumbnailFiles;
};

} // namespace

DuplicateScanner::DuplicateScanner(const Locations& locations, QObject* parent)
    : QObject(parent), m_locations(std::make_unique<const Locations>(locations)),
      m_model(new DuplicateGroupsModel(this)) {
    connect(m_model, &DuplicateGroupsModel::selectionChanged, this,
            &DuplicateScanner::selectionChanged);
    // Whichever job ended (published, cancelled), the page is idle again.
    connect(&m_job, &BackgroundJob::busyChanged, this, [this] {
        if (!m_job.isBusy()) {
            setScanning(false);
            setTrashing(false);
        }
    });
}

DuplicateScanner::~DuplicateScanner() = default;

int DuplicateScanner::groupCount() const {
    return static_cast<int>(m_model->groups().size());
}

int DuplicateScanner::selectedCount() const {
    return static_cast<int>(totalSelectedCount(m_model->groups()));
}

QString DuplicateScanner::totalWastedText() const {
    return QString::fromStdString(formatBytes(totalWastedSize(m_model->groups())));
}

bool DuplicateScanner::scan(const QStringList& folders) {
    std::vector<std::string> roots;
    for (const QString& folder : folders) {
        roots.push_back(toPathBytes(folder));
    }
    if (roots.empty()) {
        roots = defaultDuplicateFolders(*m_locations);
    }
    const bool started = m_job.start(
        [this, roots](const JobContext& job) {
            DuplicateScanOptions options;
            options.folders = roots;
            options.onProgress = [this, job](const DuplicateScanProgress& progress) {
                if (progress.phase != DuplicateScanProgress::Phase::hashing) {
                    return;
                }
                const QString text = QString::fromStdString(
                    duplicateHashingText(progress.clustersDone, progress.clusterCount));
                job.post([this, text] { setStatus(text); });
            };
            ScanOutcome outcome;
            outcome.result = findDuplicates(options, job.cancelToken());
            // Decided here, once per file, so that the page never asks an Image to decode a
            // file it cannot read.
            outcome.thumbnailFiles = DuplicateGroupsModel::thumbnailFiles(outcome.result.groups);
            return outcome;
        },
        [this, roots](ScanOutcome outcome) {
            if (outcome.result.cancelled || m_scanStopped) {
                return; // a stopped scan leaves the groups as they were
            }
            m_scannedFolders = roots;
            m_model->setGroups(std::move(outcome.result.groups), std::move(outcome.thumbnailFiles));
            setStatus(QString::fromStdString(duplicateFoundText(m_model->groups())));
            emit scanFinished();
        });
    if (started) {
        m_scanStopped = false;
        setScanning(true);
        setStatus(QString::fromUtf8(kDuplicateDiscoveringText));
    }
    return started;
}

bool DuplicateScanner::scanFolderUrl(const QUrl& folder) {
    if (!folder.isLocalFile()) {
        return false;
    }
    const QString path = folder.toLocalFile();
    if (!QFileInfo(path).isDir()) {
        return false;
    }
    return scan({path});
}

void DuplicateScanner::cancel() {
    if (m_scanning && m_job.cancel()) {
        m_scanStopped = true;
        setStatus(QString());
    }
}

void DuplicateScanner::toggleFile(const QString& fileId) {
    if (!m_trashing) {
        m_model->toggleFile(fileId.toULongLong());
    }
}

void DuplicateScanner::keepNewest() {
    if (!m_trashing) {
        m_model->autoSelect(true);
    }
}

void DuplicateScanner::keepOldest() {
    if (!m_trashing) {
        m_model->autoSelect(false);
    }
}

void DuplicateScanner::revealFile(const QString& fileId) const {
    const std::string path = m_model->pathOf(fileId.toULongLong());
    if (!path.empty()) {
        revealInFileManager(toFileQString(path));
    }
}

bool DuplicateScanner::trashSelected() {
    return trashSelected(std::function<void(const QString&)>());
}

bool DuplicateScanner::trashSelected(std::function<void(const QString&)> completion) {
    if (m_job.isBusy()) {
        return false;
    }
    std::vector<DuplicateGroup> groups = m_model->groups();
    const RemovalContext context = RemovalContext::forUser(*m_locations, m_scannedFolders);
    const bool started = m_job.start(
        [this, groups = std::move(groups), context](const JobContext& job) mutable {
            auto onProgress = [this, job](std::size_t done, std::size_t total) {
                const QString text =
                    QStringLiteral("Trashing %1 of %2 copies...").arg(done).arg(total);
                job.post([this, text] {
                    m_trashProgressText = text;
                    emit trashProgressTextChanged();
                });
            };
            return trashSelectedDuplicates(std::move(groups), context, job.cancelToken(),
                                           onProgress);
        },
        [this, completion](DuplicateTrashReport report) {
            const QString message = QString::fromStdString(
                duplicateTrashResultText(report.moved, report.freed, report.failures.size()));
            m_model->setRemainingGroups(std::move(report.remaining));
            m_trashProgressText.clear();
            emit trashProgressTextChanged();
            if (completion) {
                completion(message);
            }
            emit trashFinished(message);
        });
    if (started) {
        setTrashing(true);
    }
    return started;
}

QVariantMap DuplicateScanner::labels() {
    const TextPlatform platform = currentTextPlatform();
    auto term = [platform](const char* text) {
        return QString::fromStdString(withPlatformTerms(text, platform));
    };
    return {
        {"title", QStringLiteral("Duplicate Hunter")},
        {"scanButton", QStringLiteral("Scan Duplicates")},
        {"scanFolderButton", QStringLiteral("Scan Folder...")},
        {"emptyTitle", QStringLiteral("No Duplicates Found")},
        {"emptyText", term("Click 'Scan Duplicates' above to locate redundant files in your "
                           "Downloads, Documents, Pictures, and Movies folders.")},
        {"emptyButton", QStringLiteral("Scan For Duplicate Files")},
        {"setsSuffix", QStringLiteral(" Duplicate Sets")},
        {"wastedPrefix", QStringLiteral("Selected wasted space: ")},
        {"keepNewest", QStringLiteral("Keep Newest")},
        {"keepOldest", QStringLiteral("Keep Oldest")},
        {"trashButton", QStringLiteral("Trash Selected (%1)")},
        {"reveal", term("Reveal in Finder")},
        {"confirmTitle", QStringLiteral("Trash Selected Duplicates?")},
        {"confirmText", term("Selected duplicate copies will be moved into macOS Trash. Original "
                             "copies will remain untouched.")},
        {"cancel", QStringLiteral("Cancel")},
        {"moveToTrash", QStringLiteral("Move to Trash")},
        {"resultTitle", QStringLiteral("Duplicates Trashed")},
        {"ok", QStringLiteral("OK")},
    };
}

void DuplicateScanner::setStatus(const QString& message) {
    if (m_statusMessage != message) {
        m_statusMessage = message;
        emit statusMessageChanged();
    }
}

void DuplicateScanner::setScanning(bool scanning) {
    if (m_scanning != scanning) {
        m_scanning = scanning;
        emit isScanningChanged();
    }
}

void DuplicateScanner::setTrashing(bool trashing) {
    if (m_trashing != trashing) {
        m_trashing = trashing;
        emit isTrashingChanged();
    }
}

} // namespace sondrel
