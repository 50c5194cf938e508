#include "core/scan/hard_link_set.h"

namespace sondrel {

bool HardLinkSet::firstSighting(std::uint64_t device, std::uint64_t inode) {
    const Key key{device, inode};
    Shard& shard = m_shards[KeyHash{}(key) % kShards];
    std::lock_guard lock(shard.mutex);
    return shard.keys.insert(key).second;
}

} // namespace sondrel
