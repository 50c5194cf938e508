#pragma once
// The set of multiply-linked files already counted in one scan, keyed by (device, inode), so
// that a file reachable through several hard links adds its bytes once.

#include <array>
#include <cstdint>
#include <mutex>
#include <unordered_set>

namespace sondrel {

/// Thread-safe set of (device, inode) pairs, split into shards so that workers rarely wait.
class HardLinkSet {
public:
    /// True the first time a (device, inode) pair is seen in this set; false afterwards.
    bool firstSighting(std::uint64_t device, std::uint64_t inode);

private:
    struct Key {
        std::uint64_t device;
        std::uint64_t inode;
        friend bool operator==(const Key&, const Key&) = default;
    };
    struct KeyHash {
        std::size_t operator()(const Key& key) const noexcept {
            return static_cast<std::size_t>((key.inode * 0x9E3779B97F4A7C15ULL) ^ key.device);
        }
    };
    struct alignas(64) Shard {
        std::mutex mutex;
        std::unordered_set<Key, KeyHash> keys;
    };
    static constexpr std::size_t kShards = 32;
    std::array<Shard, kShards> m_shards;
};

} // namespace sondrel
