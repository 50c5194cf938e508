#include "core/duplicates/duplicate_verify.h"

#include "core/duplicates/sample_hash.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace sondrel {

namespace {

constexpr std::size_t kBlockBytes = 1 << 20;

std::int64_t modifiedNs(const struct stat& info) {
    return static_cast<std::int64_t>(info.st_mtim.tv_sec) * 1000000000 + info.st_mtim.tv_nsec;
}

bool matches(const struct stat& info, const DuplicateFile& file) {
    return S_ISREG(info.st_mode) && info.st_dev == file.device && info.st_ino == file.inode &&
           info.st_size == file.size && modifiedNs(info) == file.modifiedNs;
}

bool stillMatches(int fd, const DuplicateFile& file) {
    struct stat info {};
    return fstat(fd, &info) == 0 && matches(info, file);
}

// Reads up to `count` bytes at `offset`, retrying short reads; the number read, -1 on error.
ssize_t readBlock(int fd, unsigned char* buffer, std::size_t count, off_t offset) {
    std::size_t done = 0;
    while (done < count) {
        const ssize_t got =
            pread(fd, buffer + done, count - done, offset + static_cast<off_t>(done));
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            return -1;
        }
        if (got == 0) {
            break;
        }
        done += static_cast<std::size_t>(got);
    }
    return static_cast<ssize_t>(done);
}

// Owns a descriptor.
struct Descriptor {
    int fd = -1;
    ~Descriptor() {
        if (fd >= 0) {
            close(fd);
        }
    }
};

} // namespace

std::string describe(CopyVerdict verdict) {
    switch (verdict) {
    case CopyVerdict::identical:
        return "identical to the kept copy";
    case CopyVerdict::differs:
        return "differs from the kept copy";
    case CopyVerdict::copyChanged:
        return "changed since the scan";
    case CopyVerdict::keptChanged:
        return "the kept copy is gone or changed since the scan";
    case CopyVerdict::sameFile:
        return "is the same file as the kept copy (hard link)";
    case CopyVerdict::unreadable:
        return "could not be read for comparison";
    case CopyVerdict::cancelled:
        return "cancelled";
    }
    return "not verified";
}

bool isUnchangedSinceScan(const DuplicateFile& file) {
    struct stat info {};
    return lstat(file.path.c_str(), &info) == 0 && matches(info, file);
}

CopyVerdict verifyCopy(const DuplicateFile& copy, const DuplicateFile& kept,
                       const CancelToken& cancel) {
    struct stat info {};
    Descriptor copyFd{openRegularFile(copy.path, info)};
    if (copyFd.fd < 0 || !matches(info, copy)) {
        return CopyVerdict::copyChanged;
    }
    Descriptor keptFd{openRegularFile(kept.path, info)};
    if (keptFd.fd < 0 || !matches(info, kept)) {
        return CopyVerdict::keptChanged;
    }
    if (copy.device == kept.device && copy.inode == kept.inode) {
        return CopyVerdict::sameFile;
    }
    if (copy.size != kept.size) {
        return CopyVerdict::differs;
    }
    posix_fadvise(copyFd.fd, 0, 0, POSIX_FADV_SEQUENTIAL);
    posix_fadvise(keptFd.fd, 0, 0, POSIX_FADV_SEQUENTIAL);
    auto a = std::make_unique<unsigned char[]>(kBlockBytes);
    auto b = std::make_unique<unsigned char[]>(kBlockBytes);
    off_t offset = 0;
    for (;;) {
        if (cancel.isCancelled()) {
            return CopyVerdict::cancelled;
        }
        const ssize_t gotA = readBlock(copyFd.fd, a.get(), kBlockBytes, offset);
        const ssize_t gotB = readBlock(keptFd.fd, b.get(), kBlockBytes, offset);
        if (gotA < 0 || gotB < 0) {
            return CopyVerdict::unreadable;
        }
        if (gotA != gotB || std::memcmp(a.get(), b.get(), static_cast<std::size_t>(gotA)) != 0) {
            return CopyVerdict::differs;
        }
        if (gotA == 0) {
            break;
        }
        offset += gotA;
    }
    if (offset != copy.size || !stillMatches(copyFd.fd, copy)) {
        return CopyVerdict::copyChanged;
    }
    if (!stillMatches(keptFd.fd, kept)) {
        return CopyVerdict::keptChanged;
    }
    return CopyVerdict::identical;
}

} // namespace sondrel
