#pragma once
// The sampled digest that decides which files are copies of each other: SHA-256 over three
// 64 KiB samples of the file (head, middle at L / 2, tail at L - 65,536), never the whole
// content. A file is therefore read at most 192 KiB whatever its length; two files that differ
// only outside the samples get the same digest. That trade of certainty for speed is kept on
// purpose; trashing makes up for it by comparing the copies byte for byte first
// (duplicate_verify.h).
//
// Files are opened with O_RDONLY|O_NOFOLLOW|O_NONBLOCK|O_CLOEXEC and read only when fstat says
// regular file, so a FIFO, socket or device named like a video is never read from and a
// symbolic link is never followed.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <sys/stat.h>

namespace sondrel {

/// Bytes of one sample.
inline constexpr std::int64_t kSampleBytes = 65536;

/// A SHA-256 digest.
using Sha256Digest = std::array<unsigned char, 32>;

/// 64 lower-case hexadecimal digits of `digest`.
std::string toHex(const Sha256Digest& digest);

/// Opens `path` for reading without following a link and without blocking on a FIFO; returns
/// the descriptor (the caller closes it) when it is a regular file, with its fstat in `info`;
/// -1 otherwise (a non-regular file is closed again without being read). Any thread.
int openRegularFile(const std::string& path, struct stat& info);

/// The sampled digest of the regular file open at `fd` whose length is `length`: the head
/// (65,536 bytes, fewer when shorter); for a length above 262,144 also the middle sample at
/// length / 2 and the tail sample at length - 65,536; for a length above 131,072 (and at most
/// 262,144) the tail sample only. Nothing when a read fails or comes back short, which means the
/// file changed length since `length` was taken. `buffer` holds at least kSampleBytes bytes.
/// Reads with pread only. Any thread.
std::optional<Sha256Digest> sampledDigest(int fd, std::int64_t length, unsigned char* buffer);

/// The sampled digest of the file at `path` as 64 hex digits, the length taken from fstat;
/// nothing when it cannot be opened or read or is not a regular file. Any thread.
std::optional<std::string> computeQuickHash(const std::string& path);

} // namespace sondrel
