// sondrel-bench-dup_gen ROOT [--seed N] [--files N] [--scale F]: writes a seeded, media-like set
// for the duplicate benchmark. Every file is real pseudo-random content (never sparse):
// photos, documents and a few videos over 1 MiB, 20% of the files in groups of 2-5 identical
// copies spread over the folders, and same-size trap pairs that differ only in the head sample,
// only in the middle sample, only in the tail sample, or only outside the samples (names
// "trap-<kind>-<n>-a.bin" and "-b.bin").
//
// Nominal sizes are photos 2-8 MB, documents 1-5 MB, videos 100-700 MB; `--scale F` shrinks the
// part above the 1 MiB floor by F (default 0.08, so the default 10,000 files are about 13 GB and
// write in a few minutes on a slow disk). Same seed, same set, byte for byte.

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::int64_t kMiB = 1048576;
constexpr std::int64_t kSample = 65536;

// splitmix64: fast, seedable, good enough to make contents that never repeat by chance.
struct Random {
    std::uint64_t state;
    std::uint64_t next() {
        std::uint64_t z = (state += 0x9e3779b97f4a7c15ULL);
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
        return z ^ (z >> 31);
    }
    std::int64_t between(std::int64_t low, std::int64_t high) { // inclusive
        return low + static_cast<std::int64_t>(next() % static_cast<std::uint64_t>(high - low + 1));
    }
};

void fill(std::vector<unsigned char>& buffer, std::int64_t size, Random& random) {
    buffer.resize(static_cast<std::size_t>(size));
    std::size_t i = 0;
    for (; i + 8 <= buffer.size(); i += 8) {
        const std::uint64_t value = random.next();
        std::memcpy(buffer.data() + i, &value, 8);
    }
    for (; i < buffer.size(); ++i) {
        buffer[i] = static_cast<unsigned char>(random.next());
    }
}

void makeDirs(const std::string& path) {
    for (std::size_t slash = 1; slash != std::string::npos; slash = path.find('/', slash + 1)) {
        mkdir(path.substr(0, slash).c_str(), 0755);
    }
    mkdir(path.c_str(), 0755);
}

void writeFile(const std::string& path, const std::vector<unsigned char>& bytes, time_t mtime) {
    const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) {
        std::perror(path.c_str());
        std::exit(1);
    }
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t wrote = write(fd, bytes.data() + done, bytes.size() - done);
        if (wrote <= 0) {
            std::perror(path.c_str());
            std::exit(1);
        }
        done += static_cast<std::size_t>(wrote);
    }
    const struct timespec times[2] = {{mtime, 0}, {mtime, 0}};
    futimens(fd, times);
    close(fd);
}

struct Kind {
    const char* folder;
    const char* extension;
    std::int64_t low;
    std::int64_t high;
};

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s ROOT [--seed N] [--files N] [--scale F]\n", argv[0]);
        return 2;
    }
    const std::string root = argv[1];
    std::uint64_t seed = 1;
    std::int64_t files = 10000;
    double scale = 0.08;
    for (int i = 2; i + 1 < argc; i += 2) {
        const std::string option = argv[i];
        if (option == "--seed") {
            seed = std::strtoull(argv[i + 1], nullptr, 10);
        } else if (option == "--files") {
            files = std::strtoll(argv[i + 1], nullptr, 10);
        } else if (option == "--scale") {
            scale = std::strtod(argv[i + 1], nullptr);
        }
    }
    auto scaled = [scale](std::int64_t bytes) {
        return kMiB + static_cast<std::int64_t>(static_cast<double>(bytes - kMiB) * scale);
    };
    const Kind photo{"Pictures", "jpg", scaled(2000000), scaled(8000000)};
    const Kind document{"Documents", "pdf", kMiB, scaled(5000000)};
    const Kind video{"Videos", "mp4", scaled(100000000), scaled(700000000)};
    const char* const copyFolders[] = {"Downloads", "Desktop", "Documents/backup",
                                       "Pictures/export"};

    Random random{seed};
    std::vector<unsigned char> buffer;
    std::int64_t written = 0;
    std::int64_t bytes = 0;
    const std::int64_t duplicateTarget = files / 5;
    std::int64_t duplicateFiles = 0;
    const time_t baseTime = 1600000000;

    auto pickKind = [&](std::int64_t index) -> const Kind& {
        if (index < 4) {
            return video;
        }
        return random.between(0, 9) < 7 ? photo : document;
    };
    auto folderOf = [&](const Kind& kind, std::int64_t index) {
        return root + "/" + kind.folder + "/" + std::to_string(2015 + index % 9) + "/" +
               std::to_string(index / 150 % 12 + 1);
    };

    // Trap pairs first: one pair of each kind per 1,000 files.
    const char* const trapKinds[] = {"head", "middle", "tail", "outside"};
    const std::int64_t trapsPerKind = std::max<std::int64_t>(1, files / 1000);
    makeDirs(root + "/Documents/traps");
    for (const char* trap : trapKinds) {
        for (std::int64_t n = 0; n < trapsPerKind; ++n) {
            const std::int64_t size = random.between(document.low + 4 * kSample, document.high);
            fill(buffer, size, random);
            const std::string stem =
                root + "/Documents/traps/trap-" + trap + "-" + std::to_string(n) + "-";
            writeFile(stem + "a.bin", buffer, baseTime);
            std::int64_t offset = size / 4; // outside every sample
            if (std::strcmp(trap, "head") == 0) {
                offset = 100;
            } else if (std::strcmp(trap, "middle") == 0) {
                offset = size / 2 + 100;
            } else if (std::strcmp(trap, "tail") == 0) {
                offset = size - 100;
            }
            buffer[static_cast<std::size_t>(offset)] ^= 0x5a;
            writeFile(stem + "b.bin", buffer, baseTime + 60);
            written += 2;
            bytes += 2 * size;
        }
    }

    std::int64_t index = 0;
    while (written < files) {
        const Kind& kind = pickKind(index);
        const std::int64_t size = random.between(kind.low, kind.high);
        fill(buffer, size, random);
        const std::string folder = folderOf(kind, index);
        makeDirs(folder);
        const time_t mtime = baseTime + static_cast<time_t>(random.between(0, 200000000));
        const std::string name = "IMG_" + std::to_string(100000 + index) + "." + kind.extension;
        writeFile(folder + "/" + name, buffer, mtime);
        ++written;
        bytes += size;
        if (duplicateFiles < duplicateTarget && index >= 4 && written < files) {
            const std::int64_t copies =
                std::min<std::int64_t>(random.between(1, 4), files - written);
            for (std::int64_t c = 0; c < copies; ++c) {
                const std::string copyFolder =
                    root + "/" + copyFolders[random.between(0, 3)] + "/" + std::to_string(c);
                makeDirs(copyFolder);
                writeFile(copyFolder + "/" + name, buffer,
                          mtime + static_cast<time_t>(random.between(1, 5000000)));
                ++written;
                bytes += size;
            }
            duplicateFiles += copies + 1;
        }
        ++index;
    }
    std::printf("%lld files, %lld bytes, %lld in duplicate groups, %lld trap pairs in %s\n",
                static_cast<long long>(written), static_cast<long long>(bytes),
                static_cast<long long>(duplicateFiles), static_cast<long long>(4 * trapsPerKind),
                root.c_str());
    return 0;
}
