#include "app/large_file_search.h"

#include "app/file_reveal.h"
#include "app/qt_conversions.h"
#include "core/model/platform_terms.h"
#include "core/removal/removal_chains.h"
#include "core/search/large_file_search.h"
#include "core/search/search_texts.h"
#include "core/util/cancel_token.h"
#include "platform/locations.h"
#include "platform/search_roots.h"

#include <QDir>
#include <QFileInfo>
#include <sys/stat.h>

namespace sondrel {

namespace {

QString fromView(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString platformText(std::string_view text) {
    return fromView(withPlatformTerms(text, currentTextPlatform()));
}

// Folder names longer than this are shortened in the "Scan NAME" button.
constexpr qsizetype kTargetNameLength = 24;

} // namespace

// What a search hands back to the GUI thread.
struct LargeFileSearch::Run {
    std::vector<std::string> roots;
    bool singleTarget = false; ///< a folder other than the home: its failure is the message
    LargeSearchResult result;
    LargeFileList files;
};

// What a trash request hands back.
struct LargeFileSearch::TrashOutcome {
    std::vector<std::string> moved;
    QString report;
};

LargeFileSearch::LargeFileSearch(const Locations& locations, QObject* parent)
    : QObject(parent), m_locations(std::make_unique<const Locations>(locations)),
      m_results(new LargeFileResultsModel(this)), m_statusText(fromView(kSearchReadyText)) {
    connect(&m_searchJob, &BackgroundJob::busyChanged, this, &LargeFileSearch::isSearchingChanged);
    connect(&m_trashJob, &BackgroundJob::busyChanged, this, &LargeFileSearch::isTrashingChanged);
    connect(&m_searchJob, &BackgroundJob::busyChanged, this, &LargeFileSearch::canTrashChanged);
    connect(&m_trashJob, &BackgroundJob::busyChanged, this, &LargeFileSearch::canTrashChanged);
}

LargeFileSearch::~LargeFileSearch() = default;

QVariantMap LargeFileSearch::labels() {
    return {
        {QStringLiteral("title"), fromView(kSearchTitle)},
        {QStringLiteral("subtitle"), platformText(kSearchSubtitle)},
        {QStringLiteral("searchPlaceholder"), QStringLiteral("Search files by name")},
        {QStringLiteral("typeLabel"), QStringLiteral("Type:")},
        {QStringLiteral("sortLabel"), QStringLiteral("Sort:")},
        {QStringLiteral("scanDrive"), QStringLiteral("Scan Drive")},
        {QStringLiteral("scanHome"), QStringLiteral("Scan Home Directory")},
        {QStringLiteral("noSearchRun"), fromView(kNoSearchRunText)},
        {QStringLiteral("noSearchRunHint"), fromView(searchHintText())},
        {QStringLiteral("reveal"), platformText(kRevealText)},
        {QStringLiteral("moveToTrash"), fromView(kMoveToTrashText)},
        {QStringLiteral("moveSelectedToTrash"), QStringLiteral("Move Selected to Trash")},
        {QStringLiteral("cancel"), QStringLiteral("Cancel")},
    };
}

void LargeFileSearch::scanHome() {
    start(m_locations->home, false);
}

void LargeFileSearch::scanDrive() {
    start(std::string("/"), true);
}

void LargeFileSearch::scanFolder(const QString& folder) {
    if (!folder.isEmpty()) {
        start(toPathBytes(folder), false);
    }
}

void LargeFileSearch::scanTarget() {
    if (m_customTarget) {
        scanFolder(m_targetFolder);
    }
}

void LargeFileSearch::setTargetFolder(const QString& folder) {
    const bool custom = !folder.isEmpty() && QDir::cleanPath(folder) != QLatin1String("/") &&
                        !isHomeFolder(*m_locations, toPathBytes(folder));
    if (folder != m_targetFolder || custom != m_customTarget) {
        m_targetFolder = folder;
        m_customTarget = custom;
        emit targetFolderChanged();
    }
}

QString LargeFileSearch::scanTargetText() const {
    if (!m_customTarget) {
        return {};
    }
    QString name = QFileInfo(QDir::cleanPath(m_targetFolder)).fileName();
    if (name.size() > kTargetNameLength) {
        name = name.left(kTargetNameLength - 1) + QChar(0x2026);
    }
    return QStringLiteral("Scan ") + name;
}

void LargeFileSearch::start(std::optional<std::string> target, bool wholeDrive) {
    if (isSearching() || isTrashing()) {
        return;
    }
    const bool started = m_searchJob.start(
        [this, target = std::move(target), wholeDrive,
         locations = *m_locations](const JobContext& job) {
            Run run;
            const bool home = target && isHomeFolder(locations, *target);
            run.roots = largeSearchRoots(locations, target,
                                         home ? cloudFolderPathsForCurrentUser(locations)
                                              : std::vector<std::string>{});
            run.singleTarget = target && !home;
            LargeSearchOptions options;
            options.oneFilesystem = wholeDrive;
            options.onProgress = [this, &job](const LargeSearchProgress& progress) {
                const QString text =
                    fromView(searchProgressText(progress.filesChecked, progress.filesFound));
                job.post([this, text] { setProgressText(text); });
            };
            run.result = searchLargeFiles(run.roots, options, job.cancelToken());
            run.files = LargeFileList(std::move(run.result.files));
            return std::make_shared<Run>(std::move(run));
        },
        [this](const std::shared_ptr<Run>& run) { publish(*run); });
    if (started) {
        m_cancelRequested = false;
        setStatusText(fromView(kSearchRunningText));
        setProgressText(QString());
    }
}

void LargeFileSearch::publish(Run& run) {
    const std::size_t found = run.files.files().size();
    std::size_t walked = 0;
    for (const SearchRootOutcome& root : run.result.roots) {
        walked += root.walked ? 1 : 0;
    }
    QString status;
    // A search the user cancelled keeps that wording even when its walk had just ended.
    if (run.result.cancelled || m_cancelRequested) {
        status = fromView(searchCancelledText(found));
    } else if (walked == 0 || (run.singleTarget && !run.result.roots.front().walked)) {
        status =
            run.singleTarget
                ? fromView(searchRootFailedText(run.roots.front(), run.result.roots.front().error))
                : fromView(searchRootsMissingText(run.roots.empty() ? "" : run.roots.front(),
                                                  run.roots.size()));
    } else {
        status = fromView(searchFinishedText(found));
    }
    m_roots = run.roots;
    m_results->setFiles(std::move(run.files));
    setProgressText(QString());
    setStatusText(status);
    if (!m_hasSearched) {
        m_hasSearched = true;
        emit hasSearchedChanged();
    }
}

void LargeFileSearch::cancel() {
    if (!m_searchJob.cancel()) {
        return;
    }
    m_cancelRequested = true;
    // The interface is idle at once; the files found so far arrive with publish().
    setProgressText(QString());
    setStatusText(fromView(searchCancelledText(0)));
}

QString LargeFileSearch::trashQuestion() const {
    const std::vector<std::string> paths = m_results->selectedPaths();
    if (paths.empty()) {
        return {};
    }
    if (paths.size() == 1) {
        const std::string_view path = paths.front();
        return fromView(trashOneQuestion(path.substr(path.rfind('/') + 1)));
    }
    return fromView(trashManyQuestion(paths.size(), m_results->selectedBytes()));
}

void LargeFileSearch::trashSelected() {
    const std::vector<std::string> paths = m_results->selectedPaths();
    // Without roots forUser would allow the whole home; a search that walked nothing found
    // nothing to trash either.
    if (!canTrash() || paths.empty() || m_roots.empty()) {
        return;
    }
    const RemovalContext context = RemovalContext::forUser(*m_locations, m_roots);
    // The rows belong to this search; a newer one's rows are not touched by the outcome.
    const std::uint64_t search = m_searchJob.generation();
    m_trashJob.start(
        [paths, context](const JobContext&) {
            TrashOutcome outcome;
            std::int64_t movedBytes = 0;
            std::size_t failed = 0;
            std::string firstReason;
            for (const std::string& path : paths) {
                struct stat info {};
                const std::int64_t size = lstat(path.c_str(), &info) == 0 ? info.st_size : 0;
                const RemovalOutcome removal = safeMoveToTrash(path, context);
                if (removal.removed) {
                    outcome.moved.push_back(path);
                    movedBytes += size;
                } else {
                    ++failed;
                    if (firstReason.empty()) {
                        firstReason = removal.message.empty() ? std::string(describe(removal.step))
                                                              : removal.message;
                    }
                }
            }
            outcome.report =
                fromView(trashReportText(outcome.moved.size(), movedBytes, failed, firstReason));
            return std::make_shared<TrashOutcome>(std::move(outcome));
        },
        [this, search](const std::shared_ptr<TrashOutcome>& outcome) {
            if (search == m_searchJob.generation()) {
                m_results->removePaths(outcome->moved);
            }
            setNoticeText(outcome->report);
        });
}

bool LargeFileSearch::revealRow(int row) {
    const LargeFile* file = m_results->fileAt(row);
    if (file == nullptr) {
        return false;
    }
    struct stat info {};
    // A file trashed or moved since the search: the file manager would show its old folder.
    if (lstat(file->path.c_str(), &info) != 0 || !revealInFileManager(toFileQString(file->path))) {
        setNoticeText(fromView(revealFailedText(file->name, currentTextPlatform())));
        return false;
    }
    return true;
}

void LargeFileSearch::setStatusText(const QString& text) {
    if (text != m_statusText) {
        m_statusText = text;
        emit statusTextChanged();
    }
}

void LargeFileSearch::setNoticeText(const QString& text) {
    if (text != m_noticeText) {
        m_noticeText = text;
        emit noticeTextChanged();
    }
}

void LargeFileSearch::setProgressText(const QString& text) {
    if (text != m_progressText) {
        m_progressText = text;
        emit progressTextChanged();
    }
}

} // namespace sondrel
