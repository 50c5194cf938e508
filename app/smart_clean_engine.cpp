#include "app/smart_clean_engine.h"

#include "app/qt_conversions.h"
#include "app/system_monitor.h"
#include "core/care/care_texts.h"
#include "core/model/byte_format.h"

#include <QPointer>
#include <QRegularExpression>
#include <utility>

namespace sondrel {

namespace {

QString qs(const std::string& text) {
    return QString::fromStdString(text);
}

} // namespace

SmartCleanEngine::SmartCleanEngine(SmartCleanHooks hooks, SystemMonitor* monitor, QObject* parent)
    : QObject(parent), m_hooks(std::move(hooks)), m_monitor(monitor),
      m_statusMessage(qs(careReadyStatus())) {
    connect(&m_cleanJob, &BackgroundJob::busyChanged, this, [this] {
        emit isCleaningChanged();
        emit textsChanged();
    });
}

SmartCleanEngine::~SmartCleanEngine() = default;

QVariantMap SmartCleanEngine::summary() const {
    return {
        {QStringLiteral("developerJunkBytes"), qint64(m_summary.developerJunkBytes)},
        {QStringLiteral("orphanedResidueBytes"), qint64(m_summary.orphanedResidueBytes)},
        {QStringLiteral("systemCacheBytes"), qint64(m_summary.systemCacheBytes)},
        {QStringLiteral("logBytes"), qint64(m_summary.logBytes)},
        {QStringLiteral("trashBytes"), qint64(m_summary.trashBytes)},
        {QStringLiteral("totalReclaimableBytes"), qint64(m_summary.totalReclaimableBytes())},
        {QStringLiteral("formattedTotal"), qs(m_summary.formattedTotal())},
    };
}

QString SmartCleanEngine::conditionText() const {
    return qs(careConditionLine(m_scores.health, m_summary.totalReclaimableBytes()));
}

QString SmartCleanEngine::summarySentence() const {
    return qs(careSummarySentence(m_summary.totalReclaimableBytes()));
}

QString SmartCleanEngine::cleanButtonText() const {
    return qs(careCleanButtonText(isCleaning(), m_summary.totalReclaimableBytes()));
}

QString SmartCleanEngine::savedText() const {
    return qs(careSavedText(m_cleanedBytesLastRun));
}

QString SmartCleanEngine::clutterDetail() const {
    return qs(careClutterDetail(m_summary.totalReclaimableBytes()));
}

bool SmartCleanEngine::gaugeIsGreen() const {
    return careGaugeIsGreen(m_scores.health);
}

QVariantList SmartCleanEngine::categoryCards() const {
    QVariantList cards;
    for (CareCategory category : kCareCategories) {
        const CareCardText text = careCardText(category);
        const std::int64_t bytes = m_summary.bytesOf(category);
        cards.append(QVariantMap{{QStringLiteral("title"), qs(text.title)},
                                 {QStringLiteral("subtitle"), qs(text.subtitle)},
                                 {QStringLiteral("icon"), qs(text.icon)},
                                 {QStringLiteral("bytes"), qint64(bytes)},
                                 {QStringLiteral("formattedSize"), qs(formatBytes(bytes))},
                                 {QStringLiteral("isInfoCard"), false}});
    }
    const CareCardText info = careInfoCardText();
    cards.append(QVariantMap{{QStringLiteral("title"), qs(info.title)},
                             {QStringLiteral("subtitle"), qs(info.subtitle)},
                             {QStringLiteral("icon"), qs(info.icon)},
                             {QStringLiteral("bytes"), qint64(0)},
                             {QStringLiteral("formattedSize"), QString()},
                             {QStringLiteral("isInfoCard"), true}});
    return cards;
}

QVariantList SmartCleanEngine::manifestRows() const {
    QVariantList rows;
    for (const CareManifestRow& row : m_manifest.rows()) {
        const CareRowText text = careRowText(row.category);
        QVariantList items;
        for (const CareItem& item : row.items) {
            items.append(QVariantMap{{QStringLiteral("path"), toDisplayQString(item.path)},
                                     {QStringLiteral("size"), qint64(item.size)},
                                     {QStringLiteral("formattedSize"), qs(formatBytes(item.size))},
                                     {QStringLiteral("needsAdmin"), item.needsAdmin}});
        }
        rows.append(QVariantMap{
            {QStringLiteral("category"), int(indexOf(row.category))},
            {QStringLiteral("title"), qs(text.title)},
            {QStringLiteral("rationale"), qs(text.rationale)},
            {QStringLiteral("icon"), qs(text.icon)},
            {QStringLiteral("badge"), qs(text.badge)},
            {QStringLiteral("needsReview"), text.needsReview},
            {QStringLiteral("bytes"), qint64(row.totalBytes)},
            {QStringLiteral("formattedSize"), qs(formatBytes(row.totalBytes))},
            {QStringLiteral("itemCount"), int(row.items.size())},
            {QStringLiteral("items"), items},
        });
    }
    return rows;
}

QVariantList SmartCleanEngine::switchStates() const {
    QVariantList states;
    for (CareCategory category : kCareCategories) {
        states.append(m_switches.isOn(category));
    }
    return states;
}

qint64 SmartCleanEngine::selectedBytes() const {
    return m_manifest.selectedBytes(m_switches);
}

QString SmartCleanEngine::selectedTotalText() const {
    return qs(formatBytes(selectedBytes()));
}

QString SmartCleanEngine::executeButtonText() const {
    return qs(careExecuteButtonText(selectedBytes()));
}

bool SmartCleanEngine::selectionNeedsAdmin() const {
    return m_manifest.selectionNeedsAdmin(m_switches);
}

QVariantMap SmartCleanEngine::labels() {
    QStringList reasons;
    // Each reason is shown as its own Markdown text, where "2. " would start a new list that
    // Qt numbers from 1: the number's dot is escaped so that it stays the reason's own number.
    static const QRegularExpression number(QStringLiteral("^(\\d+)\\. "));
    for (const std::string& reason : careFreeSpaceReasons()) {
        reasons.append(qs(reason).replace(number, QStringLiteral("\\1\\. ")));
    }
    return {{QStringLiteral("transparencyBadge"), qs(careTransparencyBadge())},
            // One Markdown paragraph per bullet: a single newline would join them.
            {QStringLiteral("transparencyText"),
             qs(careTransparencyText()).replace(QLatin1Char('\n'), QStringLiteral("\n\n"))},
            {QStringLiteral("safetyHeading"), qs(careSafetyHeading())},
            {QStringLiteral("safetyText"), qs(careSafetyText())},
            {QStringLiteral("freeSpaceTitle"), qs(careFreeSpaceTitle())},
            {QStringLiteral("freeSpaceReasons"), reasons}};
}

void SmartCleanEngine::runSmartScan() {
    if (m_isScanning || isCleaning()) {
        return;
    }
    const quint64 generation = ++m_scanGeneration;
    m_isScanning = true;
    m_junkRunning = true;
    m_appsRunning = true;
    emit isScanningChanged();
    setStatus(qs(careScanningStatus()));
    setProgress(qs(careScanPhaseText(true, true)));

    // Each part reports back once; a report of an older scan is ignored.
    const auto doneFor = [guard = QPointer<SmartCleanEngine>(this), generation](bool junk) {
        return [guard, generation, junk] {
            if (guard) {
                guard->partFinished(generation, junk);
            }
        };
    };
    if (m_hooks.startJunkScan) {
        m_hooks.startJunkScan(doneFor(true));
    } else {
        partFinished(generation, true);
    }
    if (m_hooks.startAppScan) {
        m_hooks.startAppScan(doneFor(false));
    } else {
        partFinished(generation, false);
    }
}

void SmartCleanEngine::runInitialScanIfNeeded() {
    if (!m_hasScannedInitial) {
        runSmartScan();
    }
}

void SmartCleanEngine::partFinished(quint64 generation, bool junk) {
    if (generation != m_scanGeneration || !m_isScanning) {
        return;
    }
    (junk ? m_junkRunning : m_appsRunning) = false;
    setProgress(qs(careScanPhaseText(m_junkRunning, m_appsRunning)));
    if (!m_junkRunning && !m_appsRunning) {
        // Published from the event loop, so that runSmartScan always returns before the
        // results appear, even when both scans finished at once.
        QMetaObject::invokeMethod(
            this, [this, generation] { finishScan(generation); }, Qt::QueuedConnection);
    }
}

void SmartCleanEngine::finishScan(quint64 generation) {
    if (generation != m_scanGeneration || !m_isScanning) {
        return;
    }
    std::vector<CareItem> items = m_hooks.junkItems ? m_hooks.junkItems() : std::vector<CareItem>{};
    if (m_hooks.orphanItems) {
        std::vector<CareItem> orphans = m_hooks.orphanItems();
        items.insert(items.end(), std::make_move_iterator(orphans.begin()),
                     std::make_move_iterator(orphans.end()));
    }
    setManifest(CareManifest(std::move(items)));
    if (m_monitor) {
        m_monitor->refresh();
    }
    const SystemOverview overview = m_monitor ? m_monitor->overviewValue() : SystemOverview{};
    setScores(scoreAfterScan(m_summary, overview.disk, overview.memory));
    m_isScanning = false;
    emit isScanningChanged();
    if (!m_hasScannedInitial) {
        m_hasScannedInitial = true;
        emit hasScannedInitialChanged();
    }
    setProgress({});
    setStatus(qs(careScanCompletedStatus(m_summary.totalReclaimableBytes())));
    emit textsChanged();
    emit scanCompleted();
}

void SmartCleanEngine::cleanAll(const CareSwitches& switches) {
    if (m_isScanning || isCleaning()) {
        return;
    }
    std::vector<CareItem> items = m_manifest.selectedItems(switches);
    if (items.empty()) {
        return;
    }
    const std::size_t count = items.size();
    const auto clean = m_hooks.clean;
    const bool started = m_cleanJob.start(
        [this, clean, items = std::move(items)](const JobContext& job) {
            const CareCleanProgress progress = [this, job](std::size_t done, std::size_t total) {
                job.post(
                    [this, done, total] { setProgress(qs(careCleanProgressText(done, total))); });
            };
            if (!clean) {
                return CareCleanResult{};
            }
            try {
                return clean(items, job.cancelToken(), progress);
            } catch (const std::exception& error) {
                CareCleanResult failed;
                failed.failures.push_back({std::string(), error.what()});
                return failed;
            }
        },
        [this](const CareCleanResult& result) { finishClean(result); });
    if (started) {
        setStatus(qs(careCleaningStatus()));
        setProgress(qs(careCleanProgressText(0, count)));
    }
}

void SmartCleanEngine::finishClean(const CareCleanResult& result) {
    m_cleanedBytesLastRun = std::max<std::int64_t>(result.bytesFreed, 0);
    m_hasCompletedClean = true;
    m_cleanFailureText =
        result.failures.empty()
            ? QString()
            : (result.failures.size() == 1
                   ? QStringLiteral("1 item could not be removed")
                   : QStringLiteral("%1 items could not be removed").arg(result.failures.size()));
    setManifest(CareManifest());
    if (m_monitor) {
        m_monitor->refresh();
    }
    const SystemOverview overview = m_monitor ? m_monitor->overviewValue() : SystemOverview{};
    setScores(scoreAfterClean(overview.disk, overview.memory));
    setProgress({});
    setStatus(qs(careCleanCompletedStatus(m_cleanedBytesLastRun)));
    emit cleanCompleted();
    emit textsChanged();
    if (m_hooks.cleanFinished) {
        m_hooks.cleanFinished();
    }
}

void SmartCleanEngine::setCategorySwitch(int category, bool on) {
    if (category < 0 || category >= static_cast<int>(kCareCategoryCount)) {
        return;
    }
    const CareCategory which = kCareCategories[static_cast<std::size_t>(category)];
    if (m_switches.isOn(which) != on) {
        m_switches.set(which, on);
        emit switchesChanged();
    }
}

void SmartCleanEngine::resetSwitches() {
    if (m_switches != CareSwitches{}) {
        m_switches = CareSwitches{};
        emit switchesChanged();
    }
}

void SmartCleanEngine::setStatus(const QString& text) {
    if (text != m_statusMessage) {
        m_statusMessage = text;
        emit statusMessageChanged();
    }
}

void SmartCleanEngine::setProgress(const QString& text) {
    if (text != m_progressText) {
        m_progressText = text;
        emit progressTextChanged();
    }
}

void SmartCleanEngine::setManifest(CareManifest manifest) {
    m_manifest = std::move(manifest);
    m_summary = m_manifest.summary();
    m_switches = CareSwitches{};
    emit summaryChanged();
    emit manifestChanged();
    emit switchesChanged();
    emit textsChanged();
}

void SmartCleanEngine::setScores(const CareScores& scores) {
    if (scores != m_scores) {
        m_scores = scores;
        emit scoresChanged();
    }
    emit textsChanged();
}

} // namespace sondrel
