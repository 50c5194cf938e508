#pragma once
// JunkScanner: the junk cleaner's engine. It scans the home for developer caches, dependency
// folders, user caches, logs and the Trash's entries (core/junk) off the GUI thread, publishes
// the groups through its list model, keeps the user's selection, and cleans the selection off
// the GUI thread with progress ("Cleaning 3 of 12 ..."), followed by a rescan. Items that need
// administrator rights go to the privileged helper in one call (one password prompt).
//
// Background work: one job at a time (BackgroundJob); a scan or clean request while one runs is
// ignored. Smart Care reads groups() after scanFinished().
//
// Threading: GUI thread only (the worker never touches this object's state).

#include "app/background_job.h"
#include "app/junk_groups_model.h"
#include "core/junk/junk_group.h"

#include <QObject>
#include <QString>
#include <QVariantMap>
#include <memory>
#include <vector>

namespace sondrel {

struct Locations;
class PrivilegedHelperClient;

class JunkScanner : public QObject {
    Q_OBJECT
    /// The groups, one row each, in the scan's order (owned by the scanner).
    Q_PROPERTY(sondrel::JunkGroupsModel* groupModel READ groupModel CONSTANT)
    Q_PROPERTY(bool isScanning READ isScanning NOTIFY isScanningChanged)
    Q_PROPERTY(bool isCleaning READ isCleaning NOTIFY isCleaningChanged)
    /// "Scanning for developer caches, logs & junk...", "Cleaning 3 of 12 ...", "Found 2.1 GB
    /// of cleanable space"; "" before the first scan.
    Q_PROPERTY(QString statusMessage READ statusMessage NOTIFY statusMessageChanged)
    /// The result of the last clean ("Freed 1.2 GB."), "" before the first.
    Q_PROPERTY(QString lastCleanMessage READ lastCleanMessage NOTIFY lastCleanMessageChanged)
    Q_PROPERTY(int groupCount READ groupCount NOTIFY selectionChanged)
    /// The selected total over every group, formatted.
    Q_PROPERTY(QString selectedTotalText READ selectedTotalText NOTIFY selectionChanged)
    /// "Selected out of 2.1 GB total found".
    Q_PROPERTY(QString selectedOutOfText READ selectedOutOfText NOTIFY selectionChanged)
    Q_PROPERTY(bool hasSelection READ hasSelection NOTIFY selectionChanged)

public:
    /// Scans the home of `locations`. When the privileged helper is installed, items needing
    /// administrator rights go to it through pkexec; otherwise they fail with a reason.
    explicit JunkScanner(const Locations& locations, QObject* parent = nullptr);
    ~JunkScanner() override;
    JunkScanner(const JunkScanner&) = delete;
    JunkScanner& operator=(const JunkScanner&) = delete;

    JunkGroupsModel* groupModel() const { return m_model; }
    /// The current groups (empty before the first scan). GUI thread.
    const std::vector<JunkGroup>& groups() const { return m_model->groups(); }
    bool isScanning() const { return m_mode == Mode::scanning; }
    bool isCleaning() const { return m_mode == Mode::cleaning; }
    const QString& statusMessage() const { return m_statusMessage; }
    const QString& lastCleanMessage() const { return m_lastCleanMessage; }
    int groupCount() const { return static_cast<int>(groups().size()); }
    QString selectedTotalText() const;
    QString selectedOutOfText() const;
    bool hasSelection() const;

    /// Starts a scan off the GUI thread; ignored while a scan or clean runs. scanFinished()
    /// follows on the GUI thread when the groups are published.
    Q_INVOKABLE void scan();
    /// Flips one item's selection (ids as the model gives them). Ignored while cleaning.
    Q_INVOKABLE void toggleItemSelection(const QString& groupId, const QString& itemId);
    /// Selects or deselects a whole group. Ignored while cleaning.
    Q_INVOKABLE void toggleGroupSelection(const QString& groupId);
    /// Removes the selected items of one group off the GUI thread, then rescans. False when
    /// busy or nothing of the group is selected.
    Q_INVOKABLE bool cleanGroup(const QString& groupId);
    /// Removes the selected items of every group off the GUI thread, then rescans. False when
    /// busy. With nothing selected it only rescans.
    Q_INVOKABLE bool cleanAllSelected();
    /// Shows the item in the file manager.
    Q_INVOKABLE void revealItem(const QString& itemId) const;

    /// Fixed texts of the page, with this platform's words.
    Q_INVOKABLE static QVariantMap labels();

signals:
    void isScanningChanged();
    void isCleaningChanged();
    void statusMessageChanged();
    void lastCleanMessageChanged();
    void selectionChanged();
    /// A scan ended and its groups are published.
    void scanFinished();
    /// A clean ended: `message` is its result text, `freed` the bytes it freed. The rescan
    /// starts right after.
    void cleanFinished(const QString& message, qint64 freed);

private:
    enum class Mode : unsigned char { idle, scanning, cleaning };

    bool startClean(std::vector<JunkItem> items);
    void setMode(Mode mode);
    void setStatus(const QString& message);

    std::unique_ptr<const Locations> m_locations;
    std::unique_ptr<PrivilegedHelperClient> m_administrator;
    JunkGroupsModel* m_model = nullptr;
    QString m_statusMessage;
    QString m_lastCleanMessage;
    Mode m_mode = Mode::idle;
    BackgroundJob m_job;
};

} // namespace sondrel
