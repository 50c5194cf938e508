#pragma once
// SmartCleanEngine: Smart Care's one-click health check and clean. A scan runs the junk scan and
// the search for leftovers of removed apps, waits for both, reads disk and memory from the
// system monitor, and publishes a summary, a manifest of the exact items a clean would remove,
// and the health score. A clean removes the items of the manifest's rows that are switched on,
// off the GUI thread, and re-scores.
//
// Design decisions:
// - The scan waits for both scans to finish instead of reading what they published after a
//   fixed pause, so the figures shown always belong to this scan. Progress says which part runs.
// - The manifest's switches decide what a clean removes: a row switched off is not touched
//   (switching off the Trash row must never cost the user the Trash).
// - The summary, the manifest's rows and its selected total are sums over the same items, so
//   the manifest is an honest dry run of the clean.
// - After a clean the summary is zero and the score is the clean's re-score until the next scan.
//
// Collaborators come in as SmartCleanHooks (the junk and app engines, and the removal work),
// plus the shared SystemMonitor for disk and memory. The engine owns neither.
//
// Threading: GUI thread only, except the clean hook, which runs on the clean's worker thread.

#include "app/background_job.h"
#include "core/care/care_clean.h"
#include "core/care/care_manifest.h"
#include "core/care/care_scores.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>
#include <functional>
#include <vector>

namespace sondrel {

class SystemMonitor;

/// What the engine needs of the rest of the program. Every hook may be empty: a missing scan
/// hook counts as a scan that finished at once, a missing item hook as no items, a missing clean
/// hook as a clean that removed nothing.
struct SmartCleanHooks {
    /// Called when a scan finishes, on the GUI thread.
    using Done = std::function<void()>;
    /// Starts the junk scan (or joins one already running) and calls `done` exactly once on the
    /// GUI thread when it has finished. GUI thread. `done` may be called before this returns.
    std::function<void(Done done)> startJunkScan;
    /// Starts the application scan, which also finds the leftovers of removed apps; calls
    /// `done` like startJunkScan. GUI thread.
    std::function<void(Done done)> startAppScan;
    /// The junk the last junk scan found, as manifest items of the developer-cache, app-cache,
    /// log and Trash categories (dependency folders left out). GUI thread, after startJunkScan's
    /// `done`.
    std::function<std::vector<CareItem>()> junkItems;
    /// The leftovers of removed apps the last app scan found, as orphanedLeftovers items. GUI
    /// thread, after startAppScan's `done`.
    std::function<std::vector<CareItem>()> orphanItems;
    /// Removes `items` (blocking), polling the token and reporting progress; returns what was
    /// freed and what failed. Runs on the clean's worker thread: must not touch QObjects.
    std::function<CareCleanResult(const std::vector<CareItem>& items, const CancelToken& cancel,
                                  const CareCleanProgress& progress)>
        clean;
    /// Called on the GUI thread after a clean was published (the junk and app screens may
    /// rescan). Optional.
    std::function<void()> cleanFinished;
};

class SmartCleanEngine : public QObject {
    Q_OBJECT
    /// Reclaimable bytes: developerJunkBytes, orphanedResidueBytes, systemCacheBytes, logBytes,
    /// trashBytes, totalReclaimableBytes (numbers) and formattedTotal ("1.2 GB", "Zero KB").
    Q_PROPERTY(QVariantMap summary READ summary NOTIFY summaryChanged)
    /// 25..100; 98 before the first scan.
    Q_PROPERTY(int healthScore READ healthScore NOTIFY scoresChanged)
    /// Out of 60, 25 and 15.
    Q_PROPERTY(int clutterScore READ clutterScore NOTIFY scoresChanged)
    Q_PROPERTY(int diskScore READ diskScore NOTIFY scoresChanged)
    Q_PROPERTY(int memoryScore READ memoryScore NOTIFY scoresChanged)
    Q_PROPERTY(bool isScanning READ isScanning NOTIFY isScanningChanged)
    Q_PROPERTY(bool isCleaning READ isCleaning NOTIFY isCleaningChanged)
    /// "Ready for Smart Scan", the scan's and the clean's messages.
    Q_PROPERTY(QString statusMessage READ statusMessage NOTIFY statusMessageChanged)
    /// What a running scan or clean is doing now ("Scanning junk and developer caches...",
    /// "Removing 3 of 12 items..."); "" when idle.
    Q_PROPERTY(QString progressText READ progressText NOTIFY progressTextChanged)
    Q_PROPERTY(qint64 cleanedBytesLastRun READ cleanedBytesLastRun NOTIFY cleanCompleted)
    Q_PROPERTY(bool hasCompletedClean READ hasCompletedClean NOTIFY cleanCompleted)
    /// "3 items could not be removed" after a clean with failures, else "".
    Q_PROPERTY(QString cleanFailureText READ cleanFailureText NOTIFY cleanCompleted)
    Q_PROPERTY(bool hasScannedInitial READ hasScannedInitial NOTIFY hasScannedInitialChanged)

    /// The dashboard's derived texts (see core/care/care_texts.h): conditionText,
    /// summarySentence, cleanButtonText, savedText, clutterDetail; and gaugeIsGreen.
    Q_PROPERTY(QString conditionText READ conditionText NOTIFY textsChanged)
    Q_PROPERTY(QString summarySentence READ summarySentence NOTIFY textsChanged)
    Q_PROPERTY(QString cleanButtonText READ cleanButtonText NOTIFY textsChanged)
    Q_PROPERTY(QString savedText READ savedText NOTIFY textsChanged)
    Q_PROPERTY(QString clutterDetail READ clutterDetail NOTIFY textsChanged)
    Q_PROPERTY(bool gaugeIsGreen READ gaugeIsGreen NOTIFY textsChanged)
    /// The six tiles of "Optimization Breakdown": maps with title, subtitle, icon, bytes,
    /// formattedSize and isInfoCard.
    Q_PROPERTY(QVariantList categoryCards READ categoryCards NOTIFY summaryChanged)

    /// The manifest's five rows: maps with category (index), title, rationale, icon, badge,
    /// needsReview, bytes, formattedSize, itemCount and items (maps with path, formattedSize,
    /// size, needsAdmin), largest first. Changes only with a new manifest.
    Q_PROPERTY(QVariantList manifestRows READ manifestRows NOTIFY manifestChanged)
    /// The five switches (bools) in row order; all on after each scan and when the sheet opens.
    Q_PROPERTY(QVariantList switchStates READ switchStates NOTIFY switchesChanged)
    /// The sum of the items of the rows switched on, and its text.
    Q_PROPERTY(qint64 selectedBytes READ selectedBytes NOTIFY switchesChanged)
    Q_PROPERTY(QString selectedTotalText READ selectedTotalText NOTIFY switchesChanged)
    /// "Execute Cleanup (X)" or "No Items Selected"; canExecute is false for the latter.
    Q_PROPERTY(QString executeButtonText READ executeButtonText NOTIFY switchesChanged)
    Q_PROPERTY(bool canExecute READ canExecute NOTIFY switchesChanged)
    /// Some selected item is owned by the system: the clean will ask for the password once.
    Q_PROPERTY(bool selectionNeedsAdmin READ selectionNeedsAdmin NOTIFY switchesChanged)

    /// Fixed texts of this platform: transparencyBadge, transparencyText (Markdown),
    /// safetyHeading, safetyText, freeSpaceTitle, freeSpaceReasons (list of Markdown texts).
    Q_PROPERTY(QVariantMap labels READ labels CONSTANT)

public:
    /// An engine over `hooks` and `monitor` (not owned; must outlive the engine).
    SmartCleanEngine(SmartCleanHooks hooks, SystemMonitor* monitor, QObject* parent = nullptr);
    ~SmartCleanEngine() override;
    SmartCleanEngine(const SmartCleanEngine&) = delete;
    SmartCleanEngine& operator=(const SmartCleanEngine&) = delete;

    QVariantMap summary() const;
    const SmartCleanSummary& summaryValue() const { return m_summary; }
    int healthScore() const { return m_scores.health; }
    int clutterScore() const { return m_scores.clutter; }
    int diskScore() const { return m_scores.disk; }
    int memoryScore() const { return m_scores.memory; }
    bool isScanning() const { return m_isScanning; }
    bool isCleaning() const { return m_cleanJob.isBusy(); }
    const QString& statusMessage() const { return m_statusMessage; }
    const QString& progressText() const { return m_progressText; }
    qint64 cleanedBytesLastRun() const { return m_cleanedBytesLastRun; }
    bool hasCompletedClean() const { return m_hasCompletedClean; }
    const QString& cleanFailureText() const { return m_cleanFailureText; }
    bool hasScannedInitial() const { return m_hasScannedInitial; }

    QString conditionText() const;
    QString summarySentence() const;
    QString cleanButtonText() const;
    QString savedText() const;
    QString clutterDetail() const;
    bool gaugeIsGreen() const;
    QVariantList categoryCards() const;

    QVariantList manifestRows() const;
    QVariantList switchStates() const;
    /// The manifest of the last scan (empty before it and after a clean).
    const CareManifest& manifest() const { return m_manifest; }
    const CareSwitches& switches() const { return m_switches; }
    qint64 selectedBytes() const;
    QString selectedTotalText() const;
    QString executeButtonText() const;
    bool canExecute() const { return selectedBytes() > 0; }
    bool selectionNeedsAdmin() const;
    static QVariantMap labels();

    /// Starts a scan and returns at once. Does nothing while a scan or a clean runs.
    Q_INVOKABLE void runSmartScan();
    /// Starts a scan when none has completed yet and none runs (the dashboard's first
    /// appearance).
    Q_INVOKABLE void runInitialScanIfNeeded();
    /// Cleans the rows switched on in `switches` and returns at once. Does nothing while a scan
    /// or a clean runs, or when nothing is selected.
    void cleanAll(const CareSwitches& switches);
    /// Cleans with the engine's own switches (those the manifest sheet shows).
    Q_INVOKABLE void cleanAll() { cleanAll(m_switches); }
    /// Switches the manifest row `category` (0..4) on or off; other values are ignored.
    Q_INVOKABLE void setCategorySwitch(int category, bool on);
    /// Switches every row on (the manifest sheet does so when it opens).
    Q_INVOKABLE void resetSwitches();

signals:
    void summaryChanged();
    void scoresChanged();
    void isScanningChanged();
    void isCleaningChanged();
    void statusMessageChanged();
    void progressTextChanged();
    void cleanCompleted();
    void hasScannedInitialChanged();
    void textsChanged();
    void manifestChanged();
    /// A switch changed, or the manifest did (the selection's figures change with both).
    void switchesChanged();
    /// A scan's results were published.
    void scanCompleted();

private:
    void partFinished(quint64 generation, bool junk);
    void finishScan(quint64 generation);
    void finishClean(const CareCleanResult& result);
    void setStatus(const QString& text);
    void setProgress(const QString& text);
    void setManifest(CareManifest manifest);
    void setScores(const CareScores& scores);

    SmartCleanHooks m_hooks;
    SystemMonitor* m_monitor;
    CareManifest m_manifest;
    CareSwitches m_switches;
    SmartCleanSummary m_summary;
    CareScores m_scores = kInitialCareScores;
    QString m_statusMessage;
    QString m_progressText;
    QString m_cleanFailureText;
    qint64 m_cleanedBytesLastRun = 0;
    quint64 m_scanGeneration = 0;
    bool m_isScanning = false;
    bool m_junkRunning = false;
    bool m_appsRunning = false;
    bool m_hasCompletedClean = false;
    bool m_hasScannedInitial = false;
    BackgroundJob m_cleanJob; // last: destroyed (and its worker joined) first
};

} // namespace sondrel
