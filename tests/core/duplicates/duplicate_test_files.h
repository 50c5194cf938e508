#pragma once
// Files for the duplicate finder tests: random contents (so unrelated files never share
// samples), exact copies, single-byte changes at chosen offsets, and set modification times.

#include <cstdint>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace sondrel::test {

/// `size` pseudo-random bytes from `seed`.
inline std::string randomBytes(std::size_t size, std::uint32_t seed) {
    std::mt19937 generator(seed);
    std::string bytes(size, '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(generator() & 0xff);
    }
    return bytes;
}

inline void writeBytes(const std::string& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

inline std::string readBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

/// Flips the byte at `offset` of the file at `path` in place, keeping its modification time.
inline void flipByte(const std::string& path, long offset) {
    struct stat before {};
    stat(path.c_str(), &before);
    const int fd = open(path.c_str(), O_RDWR);
    unsigned char byte = 0;
    pread(fd, &byte, 1, offset);
    byte = static_cast<unsigned char>(byte ^ 0xff);
    pwrite(fd, &byte, 1, offset);
    close(fd);
    const struct timespec times[2] = {before.st_atim, before.st_mtim};
    utimensat(AT_FDCWD, path.c_str(), times, 0);
}

/// Sets the modification time of `path` to `seconds` since the epoch.
inline void setModified(const std::string& path, long seconds) {
    const struct timespec times[2] = {{seconds, 0}, {seconds, 0}};
    utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW);
}

inline bool exists(const std::string& path) {
    struct stat info {};
    return lstat(path.c_str(), &info) == 0;
}

} // namespace sondrel::test
