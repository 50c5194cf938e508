#pragma once
// The depth-first walk of the code that acts on every entry of a tree through descriptors
// (permanent removal, handing a trashed folder back to its user). It holds one folder
// descriptor at a time, whatever the depth: going down closes the folder left, going up reopens
// it through the child's ".." and checks that it is the very folder left (device and inode), so
// a chain deeper than the open-file limit is walked like any other and no stack grows with it.
// Acting on descriptors and (device, inode) keeps the guarantee of holding every folder open: a
// folder moved elsewhere while its contents are visited is still the one acted on, never the
// name's new owner. Listing goes through forEachEntryAt (core/fs/folder_listing.h).

#include "core/removal/folder_fd.h"

#include <string>

namespace sondrel {

/// A depth-first descent over one entry and everything below it. Subclasses say what to do
/// with each entry (enter) and with each folder once its contents were visited (leave).
/// One descent at a time per object; blocking; any thread.
class FolderDescent {
public:
    virtual ~FolderDescent() = default;

    /// Visits the entry `name` of the folder open at `parentFd` (`path` is its path, bytes) and,
    /// when enter() opens it as a folder, everything below it, entries of a folder in listing
    /// order (all names are read before any is acted on). Returns false when the walk stopped
    /// early because a folder's parent could not be found again on the way up (the folder was
    /// moved out of it while its contents were visited): failed() was told about that folder,
    /// leave() is not called for it nor its ancestors. Listing failures are told to failed() and
    /// the walk goes on.
    bool run(int parentFd, const std::string& name, const std::string& path);

protected:
    /// Acts on the entry `name` of the folder open at `parentFd`, whose path is `path`. Returns
    /// the entry opened as a folder (without following links, checked to be entered) to visit
    /// what it holds, or an invalid FolderFd to go on with the next entry.
    virtual FolderFd enter(int parentFd, const std::string& name, const std::string& path) = 0;
    /// Everything inside the folder `name` of `parentFd` (path `path`), which enter() opened,
    /// was visited; the folder's own descriptor is closed by then.
    virtual void leave(int parentFd, const std::string& name, const std::string& path) {
        (void)parentFd;
        (void)name;
        (void)path;
    }
    /// The folder at `path` could not be listed to its end or found again; `reason` says why.
    virtual void failed(const std::string& path, const std::string& reason) = 0;
};

} // namespace sondrel
