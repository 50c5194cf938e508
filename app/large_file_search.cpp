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

#include <QMetaObject>
#include <QtConcurrent/QtConcurrentRun>
#include <sys/stat.h>
#include <unistd.h>

namespace sondrel {

namespace {

QString fromView(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString platformText(std::string_view text) {
    return fromView(withPlatformTerms(text, currentTextPlatform()));
}

} // namespace

// What a search hands back to the GUI thread.
struct LargeFileSearch::Run {
    std::vector<std::string> roots;
    bool singleTarget = false; ///< a folder other than the home: its failure is the message
    LargeSearchResult result;
    LargeFileList files;
};

LargeFileSearch::LargeFileSearch(const Locations& locations, QObject* parent)
    : QObject(parent), m_locations(std::make_unique<const Locations>(locations)),
      m_results(new LargeFileResultsModel(this)), m_statusText(fromView(kSearchReadyText)) {}

LargeFileSearch::~LargeFileSearch() {
    if (m_cancel) {
        m_cancel->cancel();
    }
    m_work.waitForFinished();
}

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
        {QStringLiteral("noSearchRunHint"),
         QStringLiteral("Find every file of 20 MB and more in your folders.")},
        {QStringLiteral("noMatches"), QStringLiteral("No files match the filters")},
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

void LargeFileSearch::start(std::optional<std::string> target, bool wholeDrive) {
    if (m_searching || m_trashing) {
        return;
    }
    m_work.waitForFinished(); // a cancelled search stops at its next entry
    const std::uint64_t generation = ++m_generation;
    m_cancel = std::make_shared<CancelToken>();
    setSearching(true);
    setStatusText(fromView(kSearchRunningText));
    setProgressText(QString());

    m_work = QtConcurrent::run([this, generation, cancel = m_cancel, target = std::move(target),
                                wholeDrive, locations = *m_locations] {
        auto run = std::make_shared<Run>();
        const bool home = target && isHomeFolder(locations, *target);
        run->roots = largeSearchRoots(locations, target,
                                      home ? cloudFolderPathsForCurrentUser(locations)
                                           : std::vector<std::string>{});
        run->singleTarget = target && !home;
        LargeSearchOptions options;
        options.oneFilesystem = wholeDrive;
        options.onProgress = [this, generation](const LargeSearchProgress& progress) {
            const QString text =
                fromView(searchProgressText(progress.filesChecked, progress.filesFound));
            QMetaObject::invokeMethod(
                this,
                [this, generation, text] {
                    if (generation == m_generation && m_searching) {
                        setProgressText(text);
                    }
                },
                Qt::QueuedConnection);
        };
        run->result = searchLargeFiles(run->roots, options, *cancel);
        run->files = LargeFileList(std::move(run->result.files));
        QMetaObject::invokeMethod(
            this, [this, generation, run] { publish(generation, run); }, Qt::QueuedConnection);
    });
}

void LargeFileSearch::publish(std::uint64_t generation, const std::shared_ptr<Run>& run) {
    if (generation != m_generation) {
        return; // a newer search has started since
    }
    const std::size_t found = run->files.files().size();
    std::size_t walked = 0;
    for (const SearchRootOutcome& root : run->result.roots) {
        walked += root.walked ? 1 : 0;
    }
    QString status;
    if (run->result.cancelled) {
        status = fromView(searchCancelledText(found));
    } else if (walked == 0 || (run->singleTarget && !run->result.roots.front().walked)) {
        status = fromView(searchRootsMissingText(run->roots.empty() ? "" : run->roots.front(),
                                                 run->singleTarget ? 1 : run->roots.size()));
    } else {
        status = fromView(searchFinishedText(found));
    }
    m_roots = run->roots;
    m_results->setFiles(std::move(run->files));
    setSearching(false);
    setProgressText(QString());
    setStatusText(status);
    if (!m_hasSearched) {
        m_hasSearched = true;
        emit hasSearchedChanged();
    }
}

void LargeFileSearch::cancel() {
    if (!m_searching) {
        return;
    }
    m_cancel->cancel();
    // The interface is idle at once; the files found so far arrive with publish().
    setSearching(false);
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
    if (m_searching || m_trashing || paths.empty()) {
        return;
    }
    m_work.waitForFinished();
    m_trashing = true;
    emit isTrashingChanged();
    const std::uint64_t generation = m_generation;

    RemovalContext context;
    context.trash.home = m_locations->home;
    context.trash.dataHome = m_locations->dataHome;
    context.trash.uid = getuid();
    context.trash.gid = getgid();
    context.allowedRoots = m_roots;
    m_work = QtConcurrent::run([this, generation, paths, context] {
        std::vector<std::string> moved;
        std::int64_t movedBytes = 0;
        std::size_t failed = 0;
        std::string firstReason;
        for (const std::string& path : paths) {
            struct stat info {};
            const std::int64_t size = lstat(path.c_str(), &info) == 0 ? info.st_size : 0;
            const RemovalOutcome outcome = safeMoveToTrash(path, context);
            if (outcome.removed) {
                moved.push_back(path);
                movedBytes += size;
            } else {
                ++failed;
                if (firstReason.empty()) {
                    firstReason = outcome.message.empty() ? std::string(describe(outcome.step))
                                                          : outcome.message;
                }
            }
        }
        const QString report =
            fromView(trashReportText(moved.size(), movedBytes, failed, firstReason));
        QMetaObject::invokeMethod(
            this,
            [this, generation, moved, report] {
                if (generation == m_generation) {
                    m_results->removePaths(moved);
                }
                m_trashing = false;
                emit isTrashingChanged();
                m_noticeText = report;
                emit noticeTextChanged();
            },
            Qt::QueuedConnection);
    });
}

bool LargeFileSearch::revealRow(int row) const {
    const LargeFile* file = m_results->fileAt(row);
    return file != nullptr && revealInFileManager(toFileQString(file->path));
}

void LargeFileSearch::setSearching(bool searching) {
    if (searching != m_searching) {
        m_searching = searching;
        emit isSearchingChanged();
    }
}

void LargeFileSearch::setStatusText(const QString& text) {
    if (text != m_statusText) {
        m_statusText = text;
        emit statusTextChanged();
    }
}

void LargeFileSearch::setProgressText(const QString& text) {
    if (text != m_progressText) {
        m_progressText = text;
        emit progressTextChanged();
    }
}

} // namespace sondrel
