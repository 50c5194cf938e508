#pragma once
// DuplicateScanner: the duplicate finder's engine. It runs a scan (core/duplicates) of the
// default folders or of chosen ones off the GUI thread, publishes the groups through its list
// model, keeps the user's selection, and trashes the selected copies (each verified byte for
// byte against the kept copy first) off the GUI thread, with progress.
//
// Background work runs on a BackgroundJob: one scan or trash run at a time, a request while
// one is under way is ignored, progress and results reach the GUI thread in order. cancel()
// stops a scan and drops its result, so the groups shown stay as they were. Destroying the
// engine cancels and joins the worker.
//
// Threading: GUI thread only (the worker never touches this object's state).

#include "app/background_job.h"
#include "app/duplicate_groups_model.h"
#include "core/duplicates/duplicate_group.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace sondrel {

struct Locations;
class CancelToken;

class DuplicateScanner : public QObject {
    Q_OBJECT
    /// The groups, one row each, in the scanner's order (owned by the scanner).
    Q_PROPERTY(sondrel::DuplicateGroupsModel* groups READ groups CONSTANT)
    Q_PROPERTY(bool isScanning READ isScanning NOTIFY isScanningChanged)
    Q_PROPERTY(bool isTrashing READ isTrashing NOTIFY isTrashingChanged)
    /// "Discovering candidate duplicate files...", "Hashing 41 of 120 candidate clusters...",
    /// "Found 3 duplicate groups (12 MB reclaimable)"; "" before the first scan.
    Q_PROPERTY(QString statusMessage READ statusMessage NOTIFY statusMessageChanged)
    Q_PROPERTY(int groupCount READ groupCount NOTIFY selectionChanged)
    /// Number of selected copies over all groups.
    Q_PROPERTY(int selectedCount READ selectedCount NOTIFY selectionChanged)
    /// Sum of the groups' wasted sizes, formatted ("Zero KB" for none).
    Q_PROPERTY(QString totalWastedText READ totalWastedText NOTIFY selectionChanged)
    /// "Trashing 3 of 10 copies..." while a trash run works, else "".
    Q_PROPERTY(QString trashProgressText READ trashProgressText NOTIFY trashProgressTextChanged)

public:
    /// Scans the default folders of `locations` when none are given.
    explicit DuplicateScanner(const Locations& locations, QObject* parent = nullptr);
    ~DuplicateScanner() override;
    DuplicateScanner(const DuplicateScanner&) = delete;
    DuplicateScanner& operator=(const DuplicateScanner&) = delete;

    DuplicateGroupsModel* groups() const { return m_model; }
    bool isScanning() const { return m_scanning; }
    bool isTrashing() const { return m_trashing; }
    const QString& statusMessage() const { return m_statusMessage; }
    int groupCount() const;
    int selectedCount() const;
    QString totalWastedText() const;
    const QString& trashProgressText() const { return m_trashProgressText; }

    /// Scans `folders` (paths as Qt stores file names), or the default folders when empty.
    /// Ignored (false) while a scan or a trash run is under way.
    Q_INVOKABLE bool scan(const QStringList& folders = {});
    /// Scans one folder chosen in a folder panel or dropped on the page; a URL that is not a
    /// local folder is ignored (false).
    Q_INVOKABLE bool scanFolderUrl(const QUrl& folder);
    /// Stops a running scan; the groups stay as they were. Nothing to do when idle.
    Q_INVOKABLE void cancel();

    /// Flips the selection of one file (its "fileId" from the model).
    Q_INVOKABLE void toggleFile(const QString& fileId);
    /// "Keep Newest" / "Keep Oldest": keeps one copy per group, selects the others.
    Q_INVOKABLE void keepNewest();
    Q_INVOKABLE void keepOldest();
    /// Shows the file in the file manager.
    Q_INVOKABLE void revealFile(const QString& fileId) const;

    /// Moves every selected copy to the Trash off the GUI thread; trashFinished(message) follows
    /// on the GUI thread with the result text, and the groups are replaced by what remains.
    /// Ignored (false) while busy.
    Q_INVOKABLE bool trashSelected();
    /// The same with a completion called on the GUI thread with the result text.
    bool trashSelected(std::function<void(const QString&)> completion);

    /// Fixed texts of the page, with this platform's words ("Show in Files" on Linux).
    Q_INVOKABLE static QVariantMap labels();

signals:
    void isScanningChanged();
    void isTrashingChanged();
    void statusMessageChanged();
    void selectionChanged();
    void trashProgressTextChanged();
    /// A trash run ended; `message` is its result text.
    void trashFinished(const QString& message);
    /// A scan ended and its groups are published.
    void scanFinished();

private:
    void setStatus(const QString& message);
    void setScanning(bool scanning);
    void setTrashing(bool trashing);

    std::unique_ptr<const Locations> m_locations;
    DuplicateGroupsModel* m_model = nullptr;
    std::vector<std::string> m_scannedFolders; // the roots the shown groups came from
    QString m_statusMessage;
    QString m_trashProgressText;
    bool m_scanning = false;
    bool m_trashing = false;
    bool m_scanStopped = false; // cancel() came before the running scan's result
    BackgroundJob m_job;        // last: destroyed (its worker joined) first
};

} // namespace sondrel
