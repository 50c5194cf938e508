#include "app/junk_scanner.h"

#include "app/file_reveal.h"
#include "app/qt_conversions.h"
#include "core/junk/junk_clean.h"
#include "core/junk/junk_scan.h"
#include "core/model/byte_format.h"
#include "core/model/platform_terms.h"
#include "core/removal/privileged_helper_client.h"
#include "platform/helper_location.h"
#include "platform/locations.h"

#include <unistd.h>

namespace sondrel {

JunkScanner::JunkScanner(const Locations& locations, QObject* parent)
    : QObject(parent), m_locations(std::make_unique<const Locations>(locations)),
      m_model(new JunkGroupsModel(this)) {
    const std::string helper = installedHelperPath();
    if (access(helper.c_str(), X_OK) == 0) {
        m_administrator = std::make_unique<PrivilegedHelperClient>(helper);
    }
    connect(m_model, &JunkGroupsModel::selectionChanged, this, &JunkScanner::selectionChanged);
    connect(&m_job, &BackgroundJob::busyChanged, this, [this] {
        if (!m_job.isBusy()) {
            setMode(Mode::idle);
        }
    });
}

JunkScanner::~JunkScanner() = default;

QString JunkScanner::selectedTotalText() const {
    return QString::fromStdString(formatBytes(junkSelectedSize(groups())));
}

QString JunkScanner::selectedOutOfText() const {
    return QStringLiteral("Selected out of %1 total found")
        .arg(QString::fromStdString(formatBytes(junkTotalSize(groups()))));
}

bool JunkScanner::hasSelection() const {
    return !selectedJunkItems(groups()).empty();
}

void JunkScanner::scan() {
    const JunkFolders folders = JunkFolders::from(*m_locations);
    const bool started = m_job.start(
        [folders](const JobContext& job) { return scanJunk(folders, job.cancelToken()); },
        [this](std::vector<JunkGroup> found) {
            m_model->setGroups(std::move(found));
            setStatus(QString::fromStdString(junkFoundText(groups())));
            emit scanFinished();
        });
    if (started) {
        setMode(Mode::scanning);
        setStatus(QString::fromUtf8(kJunkScanningText));
    }
}

void JunkScanner::toggleItemSelection(const QString& groupId, const QString& itemId) {
    if (!isCleaning()) {
        m_model->toggleItem(groupId.toULongLong(), itemId.toULongLong());
    }
}

void JunkScanner::toggleGroupSelection(const QString& groupId) {
    if (!isCleaning()) {
        m_model->toggleGroup(groupId.toULongLong());
    }
}

bool JunkScanner::cleanGroup(const QString& groupId) {
    std::vector<JunkItem> items = selectedJunkItems(groups(), groupId.toULongLong());
    if (items.empty()) {
        return false;
    }
    return startClean(std::move(items));
}

bool JunkScanner::cleanAllSelected() {
    return startClean(selectedJunkItems(groups()));
}

bool JunkScanner::startClean(std::vector<JunkItem> items) {
    RemovalContext context =
        RemovalContext::forUser(*m_locations, junkRoots(JunkFolders::from(*m_locations)));
    context.administrator = m_administrator.get(); // lives as long as this engine
    const std::size_t total = items.size();
    const bool started = m_job.start(
        [this, items = std::move(items), context](const JobContext& job) {
            return cleanJunkItems(
                items, context, job.cancelToken(),
                [this, job](std::size_t done, std::size_t count, const std::string&) {
                    // The next item is the one now being removed.
                    const QString text =
                        QString::fromStdString(junkCleaningText(std::min(done + 1, count), count));
                    job.post([this, text] { setStatus(text); });
                });
        },
        [this](const JunkCleanReport& report) {
            m_lastCleanMessage = QString::fromStdString(junkCleanResultText(report));
            emit lastCleanMessageChanged();
            emit cleanFinished(m_lastCleanMessage, report.freed);
            scan();
        });
    if (started) {
        setMode(Mode::cleaning);
        setStatus(QString::fromStdString(junkCleaningText(total == 0 ? 0 : 1, total)));
    }
    return started;
}

void JunkScanner::revealItem(const QString& itemId) const {
    const std::string path = m_model->pathOf(itemId.toULongLong());
    if (!path.empty()) {
        revealInFileManager(toFileQString(path));
    }
}

QVariantMap JunkScanner::labels() {
    const TextPlatform platform = currentTextPlatform();
    auto term = [platform](const char* text) {
        return QString::fromStdString(withPlatformTerms(text, platform));
    };
    return {
        {"title", QStringLiteral("Developer & System Junk Cleaner")},
        {"subtitle", term("Reclaim disk space from Xcode DerivedData, node_modules bloat, user "
                          "caches, and old logs")},
        {"scanButton", QStringLiteral("Scan Junk")},
        {"emptyTitle", QStringLiteral("Ready to Scan")},
        {"emptyText", term("Click 'Scan Junk' above to locate Xcode DerivedData, simulator "
                           "caches, node_modules bloat, and system logs.")},
        {"emptyButton", QStringLiteral("Start Deep Scan")},
        {"reclaimable", QStringLiteral("Reclaimable Storage")},
        {"cleanSelected", QStringLiteral("Clean Selected Junk")},
        {"selectAll", QStringLiteral("Select All")},
        {"deselectAll", QStringLiteral("Deselect All")},
        {"cleanGroup", QStringLiteral("Clean")},
        {"admin", QStringLiteral("Admin")},
        {"reveal", term("Reveal in Finder")},
        {"confirmTitle", QStringLiteral("Clean Selected Items?")},
        {"confirmText", term("Selected cache and junk files will be moved safely to macOS Trash. "
                             "Root-owned caches will prompt for administrator permission.")},
        {"cancel", QStringLiteral("Cancel")},
        {"moveToTrash", QStringLiteral("Move to Trash")},
    };
}

void JunkScanner::setMode(Mode mode) {
    if (m_mode == mode) {
        return;
    }
    const bool wasScanning = isScanning();
    const bool wasCleaning = isCleaning();
    m_mode = mode;
    if (wasScanning != isScanning()) {
        emit isScanningChanged();
    }
    if (wasCleaning != isCleaning()) {
        emit isCleaningChanged();
    }
}

void JunkScanner::setStatus(const QString& message) {
    if (m_statusMessage != message) {
        m_statusMessage = message;
        emit statusMessageChanged();
    }
}

} // namespace sondrel
