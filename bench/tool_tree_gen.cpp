// sondrel-bench-tree_gen: builds a seeded, home-like folder tree for the scan benchmarks.
//
// Usage: sondrel-bench-tree_gen OUTDIR [--seed N] [--files N] [--folders N] [--large N]
//                               [--no-hidden]
//
// The tree (same seed, same tree) has the shape of a real home folder: media and document
// folders, projects with node_modules-like subtrees and .git folders, a wide camera folder,
// hidden folders (.cache, .config, .local), folders nested up to 12 levels, sparse files of up
// to 4 GB next to many small files with real contents, symbolic links to files and folders, a
// symbolic link loop, hard links, application bundles, unreadable folders and hostile names
// (newlines, invalid UTF-8, quotes, "$()", leading dashes, 255-byte names).
// --large N adds N more sparse files of 20 MiB to 2 GiB at every depth, one in four of them
// inside a folder the large-file search prunes (build, dist, vendor, Caches, ...), and two files
// on each side of the 20 MiB floor.
// With --no-hidden no entry has a hidden name (".cache" becomes "cache", and so on; the random
// sequence is the same), so that tools that skip hidden entries and tools that walk them see
// the same files. OUTDIR must not exist yet. Prints a one-line summary of what it made.

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <random>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

struct Folder {
    std::string path;
    int depth;
};

struct Generator {
    std::mt19937_64 random;
    std::vector<Folder> folders;
    std::vector<std::string> files;
    long long fileCount = 0;
    long long linkCount = 0;
    long long hardLinkCount = 0;
    long long bytes = 0;
    std::string content = std::string(8192, 'x');
    bool hidden = true; // false: no entry gets a hidden name

    explicit Generator(std::uint64_t seed) : random(seed) {}

    std::uint64_t below(std::uint64_t n) { return n == 0 ? 0 : random() % n; }

    bool makeDir(const std::string& path, int depth) {
        if (mkdir(path.c_str(), 0755) != 0 && errno != EEXIST) {
            return false;
        }
        folders.push_back({path, depth});
        return true;
    }

    // A logical size: mostly small, some medium, a few huge (sparse).
    long long pickSize() {
        const std::uint64_t roll = below(1000);
        if (roll < 700) {
            return static_cast<long long>(below(4096));
        }
        if (roll < 980) {
            return static_cast<long long>(4096 + below(1 << 20));
        }
        return static_cast<long long>(below(4ULL << 30)); // sparse: up to 4 GB
    }

    void makeFile(const std::string& path) {
        const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        if (fd < 0) {
            return;
        }
        const long long size = pickSize();
        if (size <= static_cast<long long>(content.size())) {
            const ssize_t written = write(fd, content.data(), static_cast<std::size_t>(size));
            static_cast<void>(written);
        } else if (ftruncate(fd, size) != 0) { // a sparse file: no blocks written
            close(fd);
            return;
        }
        close(fd);
        bytes += size;
        ++fileCount;
        if (below(20) == 0) {
            files.push_back(path);
        }
    }

    // A top-level or fixed folder name: ".git" stays hidden only when hidden names are made.
    std::string fixed(const std::string& text) const {
        return hidden || text.empty() || text[0] != '.' ? text : text.substr(1);
    }

    std::string name(const char* stem, std::uint64_t n) {
        static const char* const kExtensions[] = {".txt", ".jpg", ".png",  ".pdf", ".mp3",
                                                  ".mp4", ".js",  ".json", ".c",   ".h",
                                                  ".zip", ".iso", "",      ".md",  ".py"};
        std::string text = stem + std::to_string(n);
        if (below(20) == 0 && hidden) {
            text = "." + text; // hidden
        }
        return text + kExtensions[below(sizeof kExtensions / sizeof *kExtensions)];
    }

    // Folders below `root` until `count` exist under it, each at most `maxDepth` deep.
    void growFolders(const Folder& root, int count, int maxDepth, const char* stem) {
        std::vector<Folder> local = {root};
        for (int i = 0; i < count; ++i) {
            const Folder parent = local[below(local.size())];
            if (parent.depth >= maxDepth) {
                continue;
            }
            const std::string path = parent.path + "/" + name(stem, static_cast<std::uint64_t>(i));
            if (makeDir(path, parent.depth + 1)) {
                local.push_back(folders.back());
            }
        }
    }
};

} // namespace

int main(int argc, char** argv) {
    std::string out;
    std::uint64_t seed = 1;
    long long targetFiles = 300000;
    int targetFolders = 30000;
    long long largeFiles = 0;
    bool hidden = true;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--seed" && i + 1 < argc) {
            seed = std::strtoull(argv[++i], nullptr, 10);
        } else if (arg == "--files" && i + 1 < argc) {
            targetFiles = std::atoll(argv[++i]);
        } else if (arg == "--folders" && i + 1 < argc) {
            targetFolders = std::atoi(argv[++i]);
        } else if (arg == "--large" && i + 1 < argc) {
            largeFiles = std::atoll(argv[++i]);
        } else if (arg == "--no-hidden") {
            hidden = false;
        } else if (out.empty() && arg[0] != '-') {
            out = arg;
        } else {
            std::fprintf(stderr, "usage: sondrel-bench-tree_gen OUTDIR [--seed N] [--files N] "
                                 "[--folders N] [--large N] [--no-hidden]\n");
            return 2;
        }
    }
    if (out.empty() || mkdir(out.c_str(), 0755) != 0) {
        std::fprintf(stderr, "sondrel-bench-tree_gen: cannot create '%s' (it must not exist)\n",
                     out.c_str());
        return 1;
    }
    Generator gen(seed);
    gen.hidden = hidden;
    gen.folders.push_back({out, 0});
    const Folder root{out, 0};

    // Home-like top level.
    const char* const top[] = {"Documents", "Pictures", "Music",   "Videos", "Downloads",
                               "Projects",  "Desktop",  "Apps",    ".cache", ".config",
                               ".local",    "snap",     "Dropbox", "Public"};
    std::vector<Folder> tops;
    for (const char* t : top) {
        gen.makeDir(out + "/" + gen.fixed(t), 1);
        tops.push_back(gen.folders.back());
    }

    // A wide folder: one camera dump with many files.
    gen.makeDir(out + "/Pictures/Camera", 2);
    const std::string camera = out + "/Pictures/Camera";
    for (int i = 0; i < 15000; ++i) {
        gen.makeFile(camera + "/IMG_" + std::to_string(100000 + i) + ".jpg");
    }

    // node_modules-like subtrees: deep and many small files.
    const int projects = 12;
    const int budgetPerProject = targetFolders / 3 / projects;
    for (int p = 0; p < projects; ++p) {
        const std::string project = out + "/Projects/app" + std::to_string(p);
        gen.makeDir(project, 2);
        gen.makeDir(project + "/" + gen.fixed(".git"), 3);
        gen.growFolders(gen.folders.back(), 60, 6, "obj");
        gen.makeDir(project + "/src", 3);
        gen.growFolders(gen.folders.back(), 80, 8, "mod");
        gen.makeDir(project + "/node_modules", 3);
        gen.growFolders(gen.folders.back(), budgetPerProject, 12, "pkg");
    }

    // The rest of the folders spread over the top level, up to 12 deep.
    const int rest = targetFolders - static_cast<int>(gen.folders.size());
    for (std::size_t t = 0; t < tops.size(); ++t) {
        gen.growFolders(tops[t], rest / static_cast<int>(tops.size()) + 50, 12, "dir");
    }

    // Application bundles.
    for (int a = 0; a < 8; ++a) {
        const std::string app = out + "/Apps/Tool" + std::to_string(a) + ".app";
        gen.makeDir(app, 2);
        gen.makeDir(app + "/Contents", 3);
        gen.makeDir(app + "/Contents/Resources", 4);
        gen.makeDir(app + "/Contents/Frameworks/Helper.app", 5);
    }

    // Files spread over all folders (the camera folder has its share already).
    const std::size_t folderCount = gen.folders.size();
    while (gen.fileCount < targetFiles) {
        const Folder& folder = gen.folders[gen.below(folderCount)];
        gen.makeFile(folder.path + "/" +
                     gen.name("file", static_cast<std::uint64_t>(gen.fileCount)));
    }

    // Large files at every depth, some inside pruned folders, and the floor's two sides.
    const char* const pruned[] = {"build", "dist",  "vendor",      "Caches",     "venv",
                                  "Pods",  "Cache", "DerivedData", "Containers", "TemporaryItems"};
    const auto makeSparse = [&gen](const std::string& path, long long size) {
        const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        if (fd >= 0 && ftruncate(fd, size) == 0) {
            gen.bytes += size;
            ++gen.fileCount;
        }
        if (fd >= 0) {
            close(fd);
        }
    };
    for (long long i = 0; i < largeFiles; ++i) {
        std::string folder = gen.folders[gen.below(folderCount)].path;
        if (i % 4 == 0) {
            folder += std::string("/") + pruned[gen.below(sizeof pruned / sizeof *pruned)];
            mkdir(folder.c_str(), 0755);
        }
        makeSparse(folder + "/large" + std::to_string(i) + (i % 3 == 0 ? ".mkv" : ".img"),
                   (20LL << 20) + static_cast<long long>(gen.below(2ULL << 30)));
    }
    if (largeFiles > 0) {
        makeSparse(out + "/Downloads/floor-exact.bin", 20971520);
        makeSparse(out + "/Downloads/floor-less-one.bin", 20971519);
        makeSparse(out + "/Documents/floor-exact.bin", 20971520);
        makeSparse(out + "/Documents/floor-less-one.bin", 20971519);
    }

    // Hostile names.
    const std::string odd = out + "/Downloads/odd names";
    gen.makeDir(odd, 2);
    for (const std::string& n :
         {std::string("new\nline.txt"), std::string("bad \xff\xfe utf8.bin"),
          std::string("quote\"and'apostrophe"), std::string("$(touch pwned)"),
          std::string("-rf --no-preserve-root"), std::string("back\\slash"),
          std::string("tab\there"), std::string(255, 'n'), std::string("emoji \xF0\x9F\x93\x81")}) {
        gen.makeFile(odd + "/" + n);
        gen.makeDir(odd + "/" + n + ".d", 3);
        gen.makeFile(odd + "/" + n + ".d/inner");
    }

    // Symbolic links (to files, to folders, dangling, and a loop) and hard links.
    for (int i = 0; i < 300 && !gen.files.empty(); ++i) {
        const Folder& folder = gen.folders[gen.below(gen.folders.size())];
        const std::string target = i % 3 == 0   ? gen.folders[gen.below(gen.folders.size())].path
                                   : i % 3 == 1 ? gen.files[gen.below(gen.files.size())]
                                                : folder.path + "/missing-target";
        if (symlink(target.c_str(), (folder.path + "/link" + std::to_string(i)).c_str()) == 0) {
            ++gen.linkCount;
        }
    }
    // Two loops back up the tree; a tree without them is still a valid tree.
    [[maybe_unused]] const int loop = symlink("..", (out + "/Documents/loop").c_str());
    [[maybe_unused]] const int homeAgain =
        symlink(out.c_str(), (out + "/Desktop/home-again").c_str());
    for (int i = 0; i < 500 && !gen.files.empty(); ++i) {
        const std::string& target = gen.files[gen.below(gen.files.size())];
        const Folder& folder = gen.folders[gen.below(gen.folders.size())];
        if (link(target.c_str(), (folder.path + "/hardlink" + std::to_string(i)).c_str()) == 0) {
            ++gen.hardLinkCount;
        }
    }

    // Unreadable folders (root reads them anyway; other users do not).
    for (int i = 0; i < 5; ++i) {
        const std::string locked = out + "/Documents/locked" + std::to_string(i);
        gen.makeDir(locked, 2);
        gen.makeFile(locked + "/secret");
        chmod(locked.c_str(), 0);
    }

    std::printf("made %zu folders, %lld files (%lld logical bytes), %lld symlinks, %lld hard "
                "links in %s\n",
                gen.folders.size(), gen.fileCount, gen.bytes, gen.linkCount, gen.hardLinkCount,
                out.c_str());
    return 0;
}
