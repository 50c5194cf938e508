#include "core/duplicates/sample_hash.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <openssl/evp.h>
#include <unistd.h>

namespace sondrel {

namespace {

constexpr std::int64_t kMiddleAndTailAbove = 262144;
constexpr std::int64_t kTailOnlyAbove = 131072;

struct DigestContextDeleter {
    void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};

// Reads exactly `count` bytes at `offset`; false on an error or a short read.
bool readFully(int fd, unsigned char* buffer, std::int64_t count, std::int64_t offset) {
    std::int64_t done = 0;
    while (done < count) {
        const ssize_t got = pread(fd, buffer + done, static_cast<std::size_t>(count - done),
                                  static_cast<off_t>(offset + done));
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {
            return false;
        }
        done += got;
    }
    return true;
}

} // namespace

std::string toHex(const Sha256Digest& digest) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    text.reserve(digest.size() * 2);
    for (unsigned char byte : digest) {
        text.push_back(kDigits[byte >> 4]);
        text.push_back(kDigits[byte & 0xf]);
    }
    return text;
}

int openRegularFile(const std::string& path, struct stat& info) {
    const int fd = open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        return -1;
    }
    if (fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        close(fd);
        return -1;
    }
    return fd;
}

std::optional<Sha256Digest> sampledDigest(int fd, std::int64_t length, unsigned char* buffer) {
    struct Sample {
        std::int64_t offset;
        std::int64_t count;
    };
    Sample samples[3];
    int sampleCount = 0;
    samples[sampleCount++] = {0, std::min(length, kSampleBytes)};
    if (length > kMiddleAndTailAbove) {
        samples[sampleCount++] = {length / 2, kSampleBytes};
        samples[sampleCount++] = {length - kSampleBytes, kSampleBytes};
    } else if (length > kTailOnlyAbove) {
        samples[sampleCount++] = {length - kSampleBytes, kSampleBytes};
    }
    // On a cold disk the later samples are requested while the head is read.
    for (int i = 1; i < sampleCount; ++i) {
        posix_fadvise(fd, samples[i].offset, samples[i].count, POSIX_FADV_WILLNEED);
    }

    std::unique_ptr<EVP_MD_CTX, DigestContextDeleter> context(EVP_MD_CTX_new());
    if (!context || EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) != 1) {
        return std::nullopt;
    }
    for (int i = 0; i < sampleCount; ++i) {
        if (!readFully(fd, buffer, samples[i].count, samples[i].offset) ||
            EVP_DigestUpdate(context.get(), buffer, static_cast<std::size_t>(samples[i].count)) !=
                1) {
            return std::nullopt;
        }
    }
    Sha256Digest digest{};
    unsigned int digestLength = 0;
    if (EVP_DigestFinal_ex(context.get(), digest.data(), &digestLength) != 1 ||
        digestLength != digest.size()) {
        return std::nullopt;
    }
    return digest;
}

std::optional<std::string> computeQuickHash(const std::string& path) {
    struct stat info {};
    const int fd = openRegularFile(path, info);
    if (fd < 0) {
        return std::nullopt;
    }
    auto buffer = std::make_unique<unsigned char[]>(kSampleBytes);
    const std::optional<Sha256Digest> digest = sampledDigest(fd, info.st_size, buffer.get());
    close(fd);
    if (!digest) {
        return std::nullopt;
    }
    return toHex(*digest);
}

} // namespace sondrel
