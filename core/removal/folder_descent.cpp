#include "core/removal/folder_descent.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <vector>

namespace sondrel {

namespace {

constexpr int kDirFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

// One folder on the way down: open while it is the one being worked on, closed while one of
// its subfolders is.
struct Frame {
    FolderFd fd;
    std::string name; // its name in the folder above
    dev_t device = 0;
    ino_t inode = 0;
    std::vector<FolderEntry> entries;
    std::size_t next = 0;
};

} // namespace

bool FolderDescent::run(int parentFd, const std::string& name, const std::string& path) {
    std::vector<Frame> frames;
    std::string current = path; // the path of the innermost frame
    // Opens a frame for `folder`, listing it whole before anything in it is acted on.
    const auto push = [&](FolderFd folder, const std::string& folderName) {
        Frame frame;
        struct stat info {};
        if (fstat(folder.get(), &info) == 0) {
            frame.device = info.st_dev;
            frame.inode = info.st_ino;
        }
        if (!listFolder(folder.get(), frame.entries)) {
            failed(current, std::strerror(errno != 0 ? errno : EIO));
        }
        frame.fd = std::move(folder);
        frame.name = folderName;
        frames.push_back(std::move(frame));
    };

    FolderFd top = enter(parentFd, name, path);
    if (!top.valid()) {
        return true;
    }
    push(std::move(top), name);
    while (!frames.empty()) {
        Frame& frame = frames.back();
        if (frame.next < frame.entries.size()) {
            const std::string entryName = std::move(frame.entries[frame.next++].name);
            const std::string entryPath = current + "/" + entryName;
            FolderFd child = enter(frame.fd.get(), entryName, entryPath);
            if (child.valid()) {
                // Down: the folder left is found again through the child's "..".
                frame.fd = FolderFd();
                current = entryPath;
                push(std::move(child), entryName);
            }
            continue;
        }
        Frame done = std::move(frames.back());
        frames.pop_back();
        if (frames.empty()) {
            done.fd = FolderFd();
            leave(parentFd, done.name, current);
            return true;
        }
        Frame& up = frames.back();
        FolderFd parent(openat(done.fd.get(), "..", kDirFlags));
        struct stat info {};
        done.fd = FolderFd();
        const std::string donePath = current;
        current.resize(current.size() - done.name.size() - 1);
        if (!parent.valid() || fstat(parent.get(), &info) != 0 || info.st_dev != up.device ||
            info.st_ino != up.inode) {
            failed(donePath, "moved out of its folder while its contents were handled");
            return false;
        }
        up.fd = std::move(parent);
        leave(up.fd.get(), done.name, donePath);
    }
    return true;
}

} // namespace sondrel
