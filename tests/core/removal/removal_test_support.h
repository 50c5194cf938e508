#pragma once
// Shared pieces of the removal tests: a temporary home, a second file system mounted inside the
// test's own folder, the desktop's view of the Trash through gio, and the helper binary.

#include "core/removal/removal_chains.h"
#include "tests/support/run_process.h"
#include "tests/support/temp_dir.h"

#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <sched.h>
#include <sstream>
#include <string>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace sondrel::test {

/// A fake home inside a TempDir: home/ with its data folder, and a RemovalContext whose only
/// root is the home. Fixed clock so DeletionDate is predictable.
struct TempHome {
    TempDir dir;
    std::string home = dir.makeDir("home");
    std::string dataHome = dir.makeDir("home/.local/share");
    std::string trash = dataHome + "/Trash";

    RemovalContext context(std::vector<std::string> roots = {}) const {
        RemovalContext c = RemovalContext::forUser(*this, std::move(roots));
        c.trash.clock = [] { return std::time_t{1700000000}; };
        return c;
    }
};

inline std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline bool exists(const std::string& path) {
    struct stat info {};
    return lstat(path.c_str(), &info) == 0;
}

/// The full path of a system program (runProcess does not search PATH), or the bare name.
inline std::string systemProgram(const std::string& name) {
    for (const char* folder : {"/usr/bin/", "/usr/sbin/", "/bin/", "/sbin/"}) {
        if (access((folder + name).c_str(), X_OK) == 0) {
            return folder + name;
        }
    }
    return name;
}

/// A file system of its own mounted at `where` (inside a test's TempDir): a loop-mounted ext2
/// image when possible (the desktop lists trashes on it), else a tmpfs. Unmounted on
/// destruction, before the TempDir goes.
class ScratchMount {
public:
    ScratchMount(const TempDir& dir, const std::string& name) : m_path(dir.makeDir(name)) {
        const std::string image = dir / (name + ".img");
        if (runProcess({systemProgram("truncate"), "-s", "16M", image}).exitCode == 0 &&
            runProcess({systemProgram("mkfs.ext2"), "-q", "-F", image}).exitCode == 0 &&
            runProcess({systemProgram("mount"), "-o", "loop", image, m_path}).exitCode == 0) {
            m_mounted = true;
            m_listedByDesktop = true;
            rmdir((m_path + "/lost+found").c_str());
            chmod(m_path.c_str(), 0755);
            return;
        }
        m_mounted = mount("tmpfs", m_path.c_str(), "tmpfs", 0, "size=16m,mode=0755") == 0;
    }
    ScratchMount(const ScratchMount&) = delete;
    ScratchMount& operator=(const ScratchMount&) = delete;
    ~ScratchMount() {
        if (m_mounted && umount(m_path.c_str()) != 0) {
            umount2(m_path.c_str(), MNT_DETACH);
        }
    }
    bool mounted() const { return m_mounted; }
    /// True for the ext2 image: gvfs lists trashes there (it leaves tmpfs out).
    bool listedByDesktop() const { return m_listedByDesktop; }
    const std::string& path() const { return m_path; }

private:
    std::string m_path;
    bool m_mounted = false;
    bool m_listedByDesktop = false;
};

/// A bind mount of `source` at `target` (both existing, inside a test's TempDir), undone on
/// destruction; declare it after the TempDir it lives in. The first one moves the test process
/// into a private mount namespace when it can, so a crashed test leaves no mount behind.
class BindMount {
public:
    BindMount(const std::string& source, const std::string& target) : m_target(target) {
        static const bool isolated = [] {
            return unshare(CLONE_NEWNS) == 0 &&
                   mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
        }();
        (void)isolated;
        m_mounted = mount(source.c_str(), target.c_str(), nullptr, MS_BIND, nullptr) == 0;
    }
    BindMount(const BindMount&) = delete;
    BindMount& operator=(const BindMount&) = delete;
    ~BindMount() {
        if (m_mounted && umount(m_target.c_str()) != 0) {
            umount2(m_target.c_str(), MNT_DETACH);
        }
    }
    /// False when mounting is not permitted here (not root, no CAP_SYS_ADMIN): skip the test.
    bool mounted() const { return m_mounted; }

private:
    std::string m_target;
    bool m_mounted = false;
};

/// Lowers the soft open-file limit to `limit` for its lifetime (restored on destruction).
class DescriptorLimit {
public:
    explicit DescriptorLimit(rlim_t limit) {
        getrlimit(RLIMIT_NOFILE, &m_saved);
        rlimit tight = m_saved;
        tight.rlim_cur = limit;
        setrlimit(RLIMIT_NOFILE, &tight);
    }
    DescriptorLimit(const DescriptorLimit&) = delete;
    DescriptorLimit& operator=(const DescriptorLimit&) = delete;
    ~DescriptorLimit() { setrlimit(RLIMIT_NOFILE, &m_saved); }

private:
    rlimit m_saved{};
};

/// Makes `levels` nested folders "d" in the existing folder `top` (each made relative to the one
/// above, so any depth works) and a file "leaf" of `leafBytes` bytes in the deepest. False when
/// something could not be made.
inline bool makeChain(const std::string& top, int levels, std::size_t leafBytes) {
    int fd = open(top.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    for (int level = 0; fd >= 0 && level < levels; ++level) {
        const int next =
            mkdirat(fd, "d", 0755) == 0 ? openat(fd, "d", O_RDONLY | O_DIRECTORY | O_CLOEXEC) : -1;
        close(fd);
        fd = next;
    }
    if (fd < 0) {
        return false;
    }
    const int leaf = openat(fd, "leaf", O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    const std::string content(leafBytes, 'x');
    const bool written =
        leaf >= 0 && write(leaf, content.data(), content.size()) == static_cast<ssize_t>(leafBytes);
    if (leaf >= 0) {
        close(leaf);
    }
    close(fd);
    return written;
}

/// How `gio list -a trash::orig-path` prints a byte string: control bytes, DEL and bytes of
/// 0x80 and above and the backslash as "\xNN".
inline std::string gioEscaped(const std::string& bytes) {
    std::string out;
    for (const char ch : bytes) {
        const auto c = static_cast<unsigned char>(ch);
        if (c < 0x20 || c >= 0x7F || c == '\\') {
            static constexpr char kHex[] = "0123456789abcdef";
            out += "\\x";
            out += kHex[c >> 4];
            out += kHex[c & 0x0F];
        } else {
            out += ch;
        }
    }
    return out;
}

/// What the desktop's Trash shows for the temporary home (gio under a private session bus), or
/// nothing when gio, gvfs or dbus-run-session are missing.
inline std::optional<std::string> gioTrashListing(const TempHome& home) {
    if (access("/usr/bin/gio", X_OK) != 0 || access("/usr/bin/dbus-run-session", X_OK) != 0) {
        return std::nullopt;
    }
    const ProcessResult result =
        runProcess({"/usr/bin/dbus-run-session", "--", "/usr/bin/gio", "list", "-a",
                    "trash::orig-path", "trash://"},
                   {}, {{"HOME", home.home}, {"XDG_DATA_HOME", home.dataHome}});
    if (result.exitCode != 0) {
        return std::nullopt;
    }
    return result.out;
}

/// The built sondrel-helper: $SONDREL_HELPER_PATH, else ../helper/sondrel-helper next to this
/// test's build folder. Empty when not built.
inline std::string helperBinary() {
    if (const char* given = std::getenv("SONDREL_HELPER_PATH")) {
        return given;
    }
    char self[4096];
    const ssize_t length = readlink("/proc/self/exe", self, sizeof self - 1);
    if (length <= 0) {
        return {};
    }
    std::string path(self, static_cast<std::size_t>(length));
    path = path.substr(0, path.rfind('/')); // .../tests
    path = path.substr(0, path.rfind('/')); // build folder
    path += "/helper/sondrel-helper";
    return access(path.c_str(), X_OK) == 0 ? path : std::string();
}

} // namespace sondrel::test
