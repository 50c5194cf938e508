#pragma once
// Hard links in a scan (internal to core/scan): every sighting of a multiply-linked file is
// noted during the walk; afterwards its bytes stay at one sighting only.

#include "core/model/file_tree.h"

#include <cstdint>
#include <vector>

namespace sondrel {

// One sighting of a multiply-linked file: its identity, the node that counted its bytes (the
// file's own node, or the collapsed folder or bundle it lies in) and how often those bytes went
// into the progress counters (three times inside a bundle).
struct LinkSighting {
    std::uint64_t device;
    std::uint64_t inode;
    FileNode* holder;
    std::int64_t size;
    std::int64_t otherSize; ///< the same in the tree's other measure
    int reports;
    FileCategory category; ///< the file's category, taken off a collapsed holder's bytes
};

/// Keeps the bytes of each (device, inode) at the sighting whose holder has the smallest path
/// below the root (so every scan picks the same one) and subtracts them from the other
/// holders' sizes (and, for a collapsed folder, from its bytes of the file's category). Returns the
/// bytes to take off the progress counter (a sighting inside a bundle was reported three times).
/// Reorders `sightings`. Single-threaded, after the walk.
std::int64_t keepBytesAtOneLink(std::vector<LinkSighting>& sightings);

} // namespace sondrel
