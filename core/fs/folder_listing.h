#pragma once
// Reading one open folder's entries with getdents64: the one listing loop that the walk, the
// Trash and permanent removal share. Names are bytes; "." and ".." are never passed on.

#include <cstddef>
#include <cstdint>
#include <dirent.h>
#include <string>
#include <string_view>

namespace sondrel {

/// One entry of a folder as the kernel lists it. `name` points into the caller's buffer and is
/// valid only during the callback; `type` is a DT_* value (DT_UNKNOWN on file systems that do
/// not fill it in: stat the entry then).
struct ListedEntry {
    std::string_view name;
    unsigned char type = DT_UNKNOWN;
    std::uint64_t inode = 0;
};

/// One entry of a listed folder kept beyond its listing (listFolder in core/removal and
/// core/apps): its name (bytes) and its DT_* type as the kernel listed it (DT_UNKNOWN when the
/// file system does not say).
struct FolderEntry {
    std::string name;
    unsigned char type = DT_UNKNOWN;
};

/// How a listing ended.
enum class ListingEnd : unsigned char {
    complete, ///< every entry was passed on
    stopped,  ///< the callback returned false
    failed,   ///< getdents64 failed (errno says why); the entries before were passed on
};

/// Default size of a listing buffer: one getdents64 call fills it with about 2,000 entries.
inline constexpr std::size_t kListingBufferBytes = 64 * 1024;

/// Calls `visit(const ListedEntry&)` for every entry of the folder open at `fd`, in the order
/// the kernel lists them, skipping "." and "..". `visit` returns true to go on, false to stop.
/// `buffer` (at least a few KiB, suitably aligned for dirent64) is scratch space owned by the
/// caller, so a walk keeps one per thread. Reads from the descriptor's current offset; does not
/// close it. Any thread; not reentrant for one descriptor.
template <class Visit>
ListingEnd forEachEntryAt(int fd, std::byte* buffer, std::size_t bufferBytes, Visit&& visit) {
    for (;;) {
        const ssize_t read = getdents64(fd, buffer, bufferBytes);
        if (read == 0) {
            return ListingEnd::complete;
        }
        if (read < 0) {
            return ListingEnd::failed;
        }
        for (ssize_t offset = 0; offset < read;) {
            const auto* entry = reinterpret_cast<const dirent64*>(buffer + offset);
            offset += entry->d_reclen;
            const char* name = entry->d_name;
            if (name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'))) {
                continue;
            }
            const ListedEntry listed{std::string_view(name), entry->d_type,
                                     static_cast<std::uint64_t>(entry->d_ino)};
            if (!visit(listed)) {
                return ListingEnd::stopped;
            }
        }
    }
}

} // namespace sondrel
