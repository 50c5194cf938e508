#include "tests/support/temp_dir.h"

#include <cerrno>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace sondrel::test {

namespace {

// Removes everything below the open folder `dirFd` without following links.
void removeContents(int dirFd) {
    DIR* dir = fdopendir(dirFd);
    if (dir == nullptr) {
        close(dirFd);
        return;
    }
    while (dirent* entry = readdir(dir)) {
        const std::string name = entry->d_name;
        if (name == "." || name == "..") {
            continue;
        }
        struct stat info {};
        if (fstatat(dirfd(dir), name.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0) {
            continue;
        }
        if (S_ISDIR(info.st_mode)) {
            fchmodat(dirfd(dir), name.c_str(), 0700, 0);
            const int child =
                openat(dirfd(dir), name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
            if (child >= 0) {
                removeContents(child);
            }
            unlinkat(dirfd(dir), name.c_str(), AT_REMOVEDIR);
        } else {
            unlinkat(dirfd(dir), name.c_str(), 0);
        }
    }
    closedir(dir);
}

void makeParents(const std::string& path) {
    for (std::size_t slash = path.find('/', 1); slash != std::string::npos;
         slash = path.find('/', slash + 1)) {
        mkdir(path.substr(0, slash).c_str(), 0755);
    }
}

} // namespace

TempDir::TempDir() : TempDir(std::string()) {}

TempDir::TempDir(const std::string& base) {
    const char* environment = std::getenv("TMPDIR");
    std::string folder = base;
    if (folder.empty()) {
        folder = environment != nullptr && environment[0] == '/' ? environment : "/tmp";
    }
    std::string pattern = folder + "/sondrel-test-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("cannot create a temporary folder");
    }
    m_path = pattern;
}

TempDir::~TempDir() {
    chmod(m_path.c_str(), 0700);
    const int fd = open(m_path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd >= 0) {
        removeContents(fd);
    }
    rmdir(m_path.c_str());
}

std::string TempDir::operator/(std::string_view relative) const {
    return m_path + "/" + std::string(relative);
}

std::string TempDir::makeDir(std::string_view relative) const {
    const std::string path = *this / relative;
    makeParents(path + "/");
    return path;
}

std::string TempDir::makeFile(std::string_view relative, long long size) const {
    return writeFile(relative, std::string(static_cast<std::size_t>(size), 'x'));
}

std::string TempDir::writeFile(std::string_view relative, std::string_view contents) const {
    const std::string path = *this / relative;
    makeParents(path);
    const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) {
        throw std::runtime_error("cannot write " + path);
    }
    std::size_t written = 0;
    while (written < contents.size()) {
        const ssize_t n = write(fd, contents.data() + written, contents.size() - written);
        if (n <= 0) {
            close(fd);
            throw std::runtime_error("cannot write " + path);
        }
        written += static_cast<std::size_t>(n);
    }
    close(fd);
    return path;
}

} // namespace sondrel::test
