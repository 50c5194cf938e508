#pragma once
// LargeFileSearch: the engine of the "Intelligent Search" section. It runs the large-file search
// (core/search) off the GUI thread over the roots of the chosen target, publishes the found
// files into its results model (which filters them as the user types), and moves chosen files
// to the Trash through the removal chains.
//
// Threading: every method and property belongs to the GUI thread. Searches and trash requests
// run as BackgroundJobs: their results and progress are applied on the GUI thread only, and a
// result of a search that a newer one replaced is dropped.
//
// Lifecycle: Idle -> scanHome()/scanDrive()/scanFolder()/scanTarget() -> Searching -> Idle with
// results.
// cancel() returns to Idle at once ("Scan cancelled: ..."); the files found until the walk
// stopped are still shown. A request while a search (or a trash) runs is ignored. Destroying the
// engine cancels a running search and waits for it.

#include "app/background_job.h"
#include "app/large_file_results_model.h"

#include <QObject>
#include <QString>
#include <QVariantMap>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace sondrel {

struct Locations;
class LargeFileSearch : public QObject {
    Q_OBJECT
    /// True while a search runs (false at once after cancel()).
    Q_PROPERTY(bool isSearching READ isSearching NOTIFY isSearchingChanged)
    /// True while chosen files are being moved to the Trash.
    Q_PROPERTY(bool isTrashing READ isTrashing NOTIFY isTrashingChanged)
    /// True when a trash request would be carried out: neither a search nor a trash runs.
    Q_PROPERTY(bool canTrash READ canTrash NOTIFY canTrashChanged)
    /// True once a search has finished or was cancelled: the list replaces the empty state.
    Q_PROPERTY(bool hasSearched READ hasSearched NOTIFY hasSearchedChanged)
    /// "Ready to search", "Scanning directories for large files...", "Scan finished: found N
    /// large files", "Scan cancelled: ...", or why nothing could be searched.
    Q_PROPERTY(QString statusText READ statusText NOTIFY statusTextChanged)
    /// "Checked N files, found M" while searching; "" otherwise.
    Q_PROPERTY(QString progressText READ progressText NOTIFY progressTextChanged)
    /// The outcome of the last trash request, or why a file could not be shown ("" before).
    Q_PROPERTY(QString noticeText READ noticeText NOTIFY noticeTextChanged)
    /// True when the main window's target folder is one of its own (neither the home folder,
    /// which scanHome covers, nor "/", which scanDrive covers): scanTarget() searches it.
    Q_PROPERTY(bool hasCustomTarget READ hasCustomTarget NOTIFY targetFolderChanged)
    /// "Scan NAME" with the custom target's folder name (long names shortened); "" without one.
    Q_PROPERTY(QString scanTargetText READ scanTargetText NOTIFY targetFolderChanged)
    /// The rows, filter and selection of the page.
    Q_PROPERTY(sondrel::LargeFileResultsModel* results READ results CONSTANT)
    /// The page's fixed texts, with this platform's words: title, subtitle, searchPlaceholder,
    /// typeLabel, scanDrive, scanHome, noSearchRun, noSearchRunHint, reveal, moveToTrash,
    /// moveSelectedToTrash, cancel, sortLabel.
    Q_PROPERTY(QVariantMap labels READ labels CONSTANT)

public:
    /// An engine for the home of `locations`; cloud folders are those of the running user.
    explicit LargeFileSearch(const Locations& locations, QObject* parent = nullptr);
    /// Cancels a running search and waits for it to stop (through its job).
    ~LargeFileSearch() override;
    LargeFileSearch(const LargeFileSearch&) = delete;
    LargeFileSearch& operator=(const LargeFileSearch&) = delete;

    bool isSearching() const { return m_searchJob.isBusy(); }
    bool isTrashing() const { return m_trashJob.isBusy(); }
    bool canTrash() const { return !isSearching() && !isTrashing(); }
    bool hasSearched() const { return m_hasSearched; }
    const QString& statusText() const { return m_statusText; }
    const QString& progressText() const { return m_progressText; }
    const QString& noticeText() const { return m_noticeText; }
    LargeFileResultsModel* results() const { return m_results; }
    bool hasCustomTarget() const { return m_customTarget; }
    QString scanTargetText() const;
    static QVariantMap labels();

    /// Follows the main window's target folder (a path as Qt stores file names; "" for none).
    /// Reads the disk once to tell whether it is the home folder.
    void setTargetFolder(const QString& folder);

    /// Searches the home target: the six user folders and the cloud folders.
    Q_INVOKABLE void scanHome();
    /// Searches the whole root file system ("/"), entering no other mount.
    Q_INVOKABLE void scanDrive();
    /// Searches `folder` (a path as Qt stores file names); the home folder counts as scanHome.
    Q_INVOKABLE void scanFolder(const QString& folder);
    /// Searches the main window's target folder when it is a custom one; otherwise ignored.
    Q_INVOKABLE void scanTarget();
    /// Ends the running search: isSearching false at once; what was found so far is shown.
    Q_INVOKABLE void cancel();

    /// The confirmation for trashing the selection: names the file when one is selected,
    /// otherwise gives the count and total size; "" when nothing is selected.
    Q_INVOKABLE QString trashQuestion() const;
    /// Moves the selected files to the Trash (no password is ever asked) and drops those that
    /// went from the results; noticeText reports the outcome. Ignored unless canTrash. Only
    /// files below the roots of the search that found them can go.
    Q_INVOKABLE void trashSelected();
    /// Shows the file of `row` in the file manager; false when that failed (a row that does
    /// not exist changes nothing; a file that is gone or a file manager that did not answer
    /// sets noticeText).
    Q_INVOKABLE bool revealRow(int row);

signals:
    void isSearchingChanged();
    void isTrashingChanged();
    void canTrashChanged();
    void targetFolderChanged();
    void hasSearchedChanged();
    void statusTextChanged();
    void progressTextChanged();
    void noticeTextChanged();

private:
    struct Run;
    struct TrashOutcome;
    void start(std::optional<std::string> target, bool wholeDrive);
    void publish(Run& run);
    void setStatusText(const QString& text);
    void setProgressText(const QString& text);
    void setNoticeText(const QString& text);

    std::unique_ptr<const Locations> m_locations;
    LargeFileResultsModel* m_results = nullptr;
    bool m_hasSearched = false;
    bool m_cancelRequested = false; ///< cancel() was called for the running search
    QString m_statusText;
    QString m_progressText;
    QString m_noticeText;
    QString m_targetFolder;           ///< the main window's target folder
    bool m_customTarget = false;      ///< m_targetFolder is neither the home folder nor "/"
    std::vector<std::string> m_roots; ///< roots of the search whose results are shown
    // Last members: destroyed (and their workers joined) first.
    BackgroundJob m_trashJob;
    BackgroundJob m_searchJob;
};

} // namespace sondrel
