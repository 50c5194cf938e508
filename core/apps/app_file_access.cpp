#include "core/apps/app_file_access.h"

#include "core/fs/folder_listing.h"
#include "core/fs/parallel_walk.h"
#include "core/util/path_text.h"

#include <algorithm>
#include <fcntl.h>
#include <memory>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>

namespace sondrel {

namespace {

// Collects the relative paths of matching files; the folder token carries the relative path.
class SuffixVisitor final : public WalkVisitor {
public:
    explicit SuffixVisitor(std::string suffix) : m_suffix(std::move(suffix)) {}

    bool folderFound(WalkWorker&, const WalkEntry& entry, FolderToken& child) override {
        const std::string* parent = static_cast<const std::string*>(entry.parent.object);
        std::lock_guard lock(m_mutex);
        m_folders.push_back(std::make_unique<std::string>(
            parent == nullptr ? std::string(entry.name) : joinPath(*parent, entry.name)));
        child.object = m_folders.back().get();
        return true;
    }

    bool fileFound(WalkWorker&, const WalkEntry& entry, void*&) override {
        if ((entry.type == DT_REG || entry.type == DT_LNK) && endsWith(entry.name, m_suffix)) {
            const std::string* parent = static_cast<const std::string*>(entry.parent.object);
            std::lock_guard lock(m_mutex);
            m_found.push_back(parent == nullptr ? std::string(entry.name)
                                                : joinPath(*parent, entry.name));
        }
        return false;
    }

    void fileStat(WalkWorker&, FolderToken, void*, std::string_view, const struct stat*) override {}

    std::vector<std::string> take() {
        std::sort(m_found.begin(), m_found.end());
        return std::move(m_found);
    }

private:
    std::string m_suffix;
    std::mutex m_mutex;
    std::vector<std::unique_ptr<std::string>> m_folders;
    std::vector<std::string> m_found;
};

// The newest st_mtime per worker, merged after the walk.
class NewestVisitor final : public WalkVisitor {
public:
    void prepare(unsigned workers) override { m_newest.assign(workers, 0); }
    bool folderFound(WalkWorker&, const WalkEntry&, FolderToken&) override { return true; }
    bool fileFound(WalkWorker&, const WalkEntry&, void*&) override { return true; }
    void fileStat(WalkWorker& worker, FolderToken, void*, std::string_view,
                  const struct stat* info) override {
        note(worker, info);
    }
    void folderOpened(WalkWorker& worker, FolderToken, const struct stat* info) override {
        note(worker, info);
    }
    std::int64_t newest() const {
        return m_newest.empty() ? 0 : *std::max_element(m_newest.begin(), m_newest.end());
    }

private:
    void note(WalkWorker& worker, const struct stat* info) {
        if (info != nullptr) {
            std::int64_t& slot = m_newest[worker.index()];
            slot = std::max<std::int64_t>(slot, info->st_mtime);
        }
    }
    std::vector<std::int64_t> m_newest;
};

} // namespace

std::optional<std::string> readSmallFile(const std::string& path, std::size_t maxBytes,
                                         bool followLink) {
    const int fd =
        open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | (followLink ? 0 : O_NOFOLLOW));
    if (fd < 0) {
        return std::nullopt;
    }
    struct stat info {};
    if (fstat(fd, &info) != 0 || !S_ISREG(info.st_mode) ||
        static_cast<std::uint64_t>(info.st_size) > maxBytes) {
        close(fd);
        return std::nullopt;
    }
    std::string data(static_cast<std::size_t>(info.st_size), '\0');
    std::size_t done = 0;
    while (done < data.size()) {
        const ssize_t n = read(fd, data.data() + done, data.size() - done);
        if (n <= 0) {
            break;
        }
        done += static_cast<std::size_t>(n);
    }
    close(fd);
    data.resize(done);
    return data;
}

std::vector<FolderEntry> listFolder(const std::string& path) {
    std::vector<FolderEntry> entries;
    const int fd = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) {
        return entries;
    }
    const auto buffer = std::make_unique<std::byte[]>(kListingBufferBytes);
    forEachEntryAt(fd, buffer.get(), kListingBufferBytes, [&](const ListedEntry& entry) {
        entries.push_back(FolderEntry{std::string(entry.name), entry.type});
        return true;
    });
    close(fd);
    return entries;
}

std::vector<std::string> findFilesBySuffix(const std::string& root, const std::string& suffix,
                                           int maxDepth) {
    SuffixVisitor visitor(suffix);
    WalkOptions options;
    options.maxDepth = maxDepth;
    options.threads = 1;
    const CancelToken never;
    walkTree(root, FolderToken{}, options, visitor, never);
    return visitor.take();
}

std::optional<std::int64_t> newestChange(const std::string& path, const CancelToken& cancel) {
    struct stat info {};
    if (lstat(path.c_str(), &info) != 0) {
        return std::nullopt;
    }
    if (!S_ISDIR(info.st_mode)) {
        return static_cast<std::int64_t>(info.st_mtime);
    }
    NewestVisitor visitor;
    WalkOptions options;
    options.statFolders = true;
    options.followRootLink = false;
    options.threads = 2;
    walkTree(path, FolderToken{}, options, visitor, cancel);
    return std::max<std::int64_t>(info.st_mtime, visitor.newest());
}

bool hasAppImageMagic(const std::string& path) {
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        return false;
    }
    struct stat info {};
    unsigned char head[11] = {};
    const bool ok = fstat(fd, &info) == 0 && S_ISREG(info.st_mode) &&
                    read(fd, head, sizeof head) == static_cast<ssize_t>(sizeof head);
    close(fd);
    return ok && head[0] == 0x7f && head[1] == 'E' && head[2] == 'L' && head[3] == 'F' &&
           head[8] == 'A' && head[9] == 'I' && (head[10] == 1 || head[10] == 2);
}

} // namespace sondrel
